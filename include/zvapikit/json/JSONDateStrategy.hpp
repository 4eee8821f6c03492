#pragma once

namespace ZAK {

/// How dates travel.
enum class JSONDateStrategy {
  /// As text, by `JavaScriptISO8601DateFormatter`.
  javaScriptISO8601,
  /// As a number of seconds since 2001-01-01T00:00:00Z, with the microsecond. Instants of the years 1729 to 2272 come
  /// back exactly, later and earlier ones to the precision of a double.
  secondsSince2001
};

}  // namespace ZAK
