#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/json/Date.hpp>

#include <optional>
#include <string>
#include <string_view>

namespace ZAK {

/// Reads and writes instants as ISO 8601 internet date-times of the years 0001 to 9999.
///
/// Read: `YYYY-MM-DDThh:mm:ss`, a fraction of 1 to 9 digits where one is asked for (cut off at the millisecond), then
/// `Z`, `z`, `±hh:mm`, `±hhmm` or `±hh`. `24:00:00` is the next day's midnight. Everything else, impossible days,
/// surrounding text and instants outside these years in UTC included, is refused.
///
/// Thread safety: no state.
class ZVAPIKIT_API JavaScriptISO8601DateFormatter {
 public:
  /// Reads an instant whose fraction is required; absent when the text is none.
  [[nodiscard]] static std::optional<Date> fractional(std::string_view text) noexcept;
  /// Reads an instant without a fraction; absent when the text is none.
  [[nodiscard]] static std::optional<Date> plain(std::string_view text) noexcept;
  /// Reads an instant with or without a fraction; absent when the text is none.
  [[nodiscard]] static std::optional<Date> date(std::string_view text) noexcept;

  /// `2023-04-05T17:09:12.345Z`: UTC, rounded half up to the millisecond. Empty for a date outside the years 0001 to
  /// 9999.
  [[nodiscard]] static std::string string(Date date);
};

}  // namespace ZAK
