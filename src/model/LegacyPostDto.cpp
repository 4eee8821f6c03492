#include <zvapikit/model/LegacyPostDto.hpp>

#include <cmath>

namespace ZAK {

Date LegacyPostDateDto::date() const noexcept {
  const double seconds = static_cast<double>(_seconds) + static_cast<double>(_nanoseconds) / 1e9;
  // A little less than a Date can hold on either side of 1970.
  constexpr double reach = 9.2e12;
  if (!(seconds < reach)) return Date::max();
  if (!(seconds > -reach)) return Date::min();
  // Whole seconds and fraction apart: their product with 10^6 would round a second time.
  const double whole = std::floor(seconds);
  return Date(std::chrono::seconds(static_cast<std::int64_t>(whole))) +
         std::chrono::microseconds(std::llround((seconds - whole) * 1e6));
}

}  // namespace ZAK
