#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/json/Date.hpp>
#include <zvapikit/json/JSONType.hpp>
#include <zvapikit/json/JSONValue.hpp>
#include <zvapikit/json/RawValue.hpp>
#include <zvapikit/json/URL.hpp>

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ZAK {

/// How far the server is with a recap. An unknown text decodes as `unknown`.
enum class RecapStatusDto {
  pending,      ///< waits for its turn
  processing,   ///< is being made
  done,         ///< can be downloaded
  nonexistent,  ///< was not asked for yet
  unavailable,  ///< cannot be asked for yet
  toolate,      ///< can no longer be asked for
  unknown       ///< a text that this version of the kit does not know
};

template <>
struct RawValues<RecapStatusDto> {
  static constexpr std::string_view name = "RecapStatusDto";
  static constexpr std::array cases = {RawCase{RecapStatusDto::pending, "pending"},
                                       RawCase{RecapStatusDto::processing, "processing"},
                                       RawCase{RecapStatusDto::done, "done"},
                                       RawCase{RecapStatusDto::nonexistent, "nonexistent"},
                                       RawCase{RecapStatusDto::unavailable, "unavailable"},
                                       RawCase{RecapStatusDto::toolate, "toolate"},
                                       RawCase{RecapStatusDto::unknown, "unknown"}};
};
template <>
inline constexpr bool CodableLastByDefault<RecapStatusDto> = true;

/// The recap video of a year. Its two dates are read only with fractional seconds; a text in any other form leaves
/// them absent.
struct ZVAPIKIT_API MemoriesRecapDto {
  std::string id;                                        ///< identifier of the recap
  RecapStatusDto videoStatus = RecapStatusDto::pending;  ///< how far the server is
  std::int64_t year = 0;                                 ///< of the posts shown, for example 2023
  std::optional<Date> countdownEnd;                      ///< from when on the video may be asked for
  std::optional<Date> generationWindowEnd;               ///< until when it may be asked for
  std::optional<std::int64_t> queuePosition;             ///< from 1, while the recap waits for its turn
  std::optional<URL> videoUrl;                           ///< where to download it, once it is done
  std::optional<bool> clientFallback;                    ///< whether the host is to make the video itself

  /// Reads the two dates by their own rule.
  static MemoriesRecapDto decodeJSON(const JSONValue& json);
  bool operator==(const MemoriesRecapDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&MemoriesRecapDto::id>("id"),
                      JSONField::of<&MemoriesRecapDto::videoStatus>("videoStatus"),
                      JSONField::of<&MemoriesRecapDto::year>("year"),
                      JSONField::of<&MemoriesRecapDto::countdownEnd>("countdownEnd"),
                      JSONField::of<&MemoriesRecapDto::generationWindowEnd>("generationWindowEnd"),
                      JSONField::of<&MemoriesRecapDto::queuePosition>("queuePosition"),
                      JSONField::of<&MemoriesRecapDto::videoUrl>("videoUrl"),
                      JSONField::of<&MemoriesRecapDto::clientFallback>("clientFallback")};
  }
};

/// The recap videos of all years.
struct MemoriesRecapsDto {
  std::vector<MemoriesRecapDto> videos;  ///< one a year

  bool operator==(const MemoriesRecapsDto&) const = default;
  static constexpr auto jsonFields() { return std::array{JSONField::of<&MemoriesRecapsDto::videos>("videos")}; }
};

}  // namespace ZAK
