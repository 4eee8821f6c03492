#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/json/Date.hpp>
#include <zvapikit/json/JSONType.hpp>
#include <zvapikit/json/JSONValue.hpp>
#include <zvapikit/model/MediaDto.hpp>

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace ZAK {

/// The post of one past day.
struct ZVAPIKIT_API MemoryDto {
  std::string id;                     ///< identifier of the memory
  bool isLate = false;                ///< late for its moment
  std::string memoryDay;              ///< as the server wrote it, `yyyy-MM-dd`
  Date memoryDate{};                  ///< not in JSON: made of `memoryDay` while decoding
  MediaDto primary;                   ///< main picture
  std::optional<MediaDto> secondary;  ///< inset picture
  std::optional<MediaDto> thumbnail;  ///< small form of the main picture

  /// `memoryDate` becomes the first instant of `memoryDay` in the machine's time zone, or the decoder's `now` when the
  /// text is no day.
  static MemoryDto decodeJSON(const JSONValue& json);

  bool operator==(const MemoryDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&MemoryDto::id>("id"),
                      JSONField::of<&MemoryDto::isLate>("isLate"),
                      JSONField::of<&MemoryDto::memoryDay>("memoryDay"),
                      JSONField::of<&MemoryDto::primary>("primary"),
                      JSONField::of<&MemoryDto::secondary>("secondary"),
                      JSONField::of<&MemoryDto::thumbnail>("thumbnail")};
  }
};

/// One page of memories. No operation takes its cursors: for more, raise the limit or ask for all.
struct MemoriesDto {
  std::vector<MemoryDto> data;               ///< latest day first
  std::optional<std::string> next;           ///< cursor of the next page; absent on the last
  std::optional<std::string> prev;           ///< cursor of the previous page; absent on the first
  std::optional<bool> memoriesSynchronized;  ///< whether the server has gathered them all

  bool operator==(const MemoriesDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&MemoriesDto::data>("data"), JSONField::of<&MemoriesDto::next>("next"),
                      JSONField::of<&MemoriesDto::prev>("prev"),
                      JSONField::of<&MemoriesDto::memoriesSynchronized>("memoriesSynchronized")};
  }
};

}  // namespace ZAK
