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
enum class RecapStatusDto { pending, processing, done, nonexistent, unavailable, toolate, unknown };

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
  std::string id;
  RecapStatusDto videoStatus = RecapStatusDto::pending;
  std::int64_t year = 0;
  std::optional<Date> countdownEnd;
  std::optional<Date> generationWindowEnd;
  std::optional<std::int64_t> queuePosition;
  std::optional<URL> videoUrl;
  std::optional<bool> clientFallback;

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
  std::vector<MemoriesRecapDto> videos;

  bool operator==(const MemoriesRecapsDto&) const = default;
  static constexpr auto jsonFields() { return std::array{JSONField::of<&MemoriesRecapsDto::videos>("videos")}; }
};

}  // namespace ZAK
