#pragma once

#include <zvapikit/json/Date.hpp>

#include <chrono>
#include <cmath>
#include <optional>

namespace ZAK::detail {

/// 2001-01-01T00:00:00Z, from which dates as numbers are counted.
inline constexpr Date referenceDate = std::chrono::sys_days(std::chrono::year(2001) / 1 / 1);

/// Seconds from the reference date that a Date can hold, a little less than the most.
inline constexpr double referenceDateReach = 9.2e12;

/// False for dates too near the ends of what a Date can hold to be counted from the reference date. The ends of the
/// range are whole seconds and belong to it, so that rounding to a double never leads out of it.
inline bool hasSecondsSince2001(Date date) noexcept {
  constexpr auto limit = std::chrono::seconds(9'198'000'000'000);
  return date.time_since_epoch() >= -limit && date.time_since_epoch() <= limit;
}

/// To the nearest microsecond; absent when there is no such date.
inline std::optional<Date> dateOfSecondsSince2001(double seconds) noexcept {
  if (!(std::abs(seconds) < referenceDateReach)) return std::nullopt;
  // Whole seconds and fraction apart: their product with 10^6 would round a second time.
  const double whole = std::floor(seconds);
  const auto microseconds = std::chrono::microseconds(std::llround((seconds - whole) * 1e6));
  const Date date = referenceDate + std::chrono::seconds(static_cast<long long>(whole)) + microseconds;
  return hasSecondsSince2001(date) ? std::optional(date) : std::nullopt;
}

}  // namespace ZAK::detail
