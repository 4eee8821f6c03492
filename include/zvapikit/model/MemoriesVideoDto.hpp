#pragma once

#include <zvapikit/json/JSONType.hpp>
#include <zvapikit/json/RawValue.hpp>
#include <zvapikit/json/URL.hpp>
#include <zvapikit/model/MediaDto.hpp>

#include <array>
#include <optional>
#include <string_view>

namespace ZAK {

/// How far the server is with a video. An unknown text fails to decode.
enum class MemoriesVideoStatusDto {
  done,         ///< can be downloaded
  pending,      ///< waits for its turn
  processing,   ///< is being made
  downloading,  ///< is being brought to where it can be downloaded
  nonexistent,  ///< was not asked for yet
  unavailable   ///< cannot be asked for
};

template <>
struct RawValues<MemoriesVideoStatusDto> {
  static constexpr std::string_view name = "MemoriesVideoStatusDto";
  static constexpr std::array cases = {RawCase{MemoriesVideoStatusDto::done, "done"},
                                       RawCase{MemoriesVideoStatusDto::pending, "pending"},
                                       RawCase{MemoriesVideoStatusDto::processing, "processing"},
                                       RawCase{MemoriesVideoStatusDto::downloading, "downloading"},
                                       RawCase{MemoriesVideoStatusDto::nonexistent, "nonexistent"},
                                       RawCase{MemoriesVideoStatusDto::unavailable, "unavailable"}};
};

/// The state of the video made of the user's memories. The thumbnails travel as `primary` and `secondary`.
struct MemoriesVideoDto {
  MemoriesVideoStatusDto status = MemoriesVideoStatusDto::done;  ///< how far the server is
  std::optional<URL> url;                                        ///< the video, once there is one
  std::optional<MediaDto> thumbPrimary;                          ///< still of the main picture, key `primary`
  std::optional<MediaDto> thumbSecondary;                        ///< still of the inset picture, key `secondary`

  bool operator==(const MemoriesVideoDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&MemoriesVideoDto::status>("status"), JSONField::of<&MemoriesVideoDto::url>("url"),
                      JSONField::of<&MemoriesVideoDto::thumbPrimary>("primary"),
                      JSONField::of<&MemoriesVideoDto::thumbSecondary>("secondary")};
  }
};

}  // namespace ZAK
