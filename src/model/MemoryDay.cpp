#include "model/MemoryDay.hpp"

#include <date/date.h>
#include <date/tz.h>

#include <algorithm>
#include <charconv>
#include <stdexcept>

namespace ZAK {
namespace {

/// Takes a number of `least` to `most` digits off the front of `text`.
std::optional<int> takeNumber(std::string_view& text, std::size_t least, std::size_t most) {
  int number = 0;
  const char* const limit = text.data() + std::min(text.size(), most);
  const auto [end, error] = std::from_chars(text.data(), limit, number);
  const auto digits = static_cast<std::size_t>(end - text.data());
  if (error != std::errc() || digits < least || text.front() == '-') return std::nullopt;
  text.remove_prefix(digits);
  return number;
}

bool takeDash(std::string_view& text) {
  if (!text.starts_with('-')) return false;
  text.remove_prefix(1);
  return true;
}

std::optional<date::local_days> parsedDay(std::string_view text) {
  const auto year = takeNumber(text, 4, 4);
  if (!year || *year == 0 || !takeDash(text)) return std::nullopt;
  const auto month = takeNumber(text, 1, 2);
  if (!month || !takeDash(text)) return std::nullopt;
  const auto day = takeNumber(text, 1, 2);
  if (!day || !text.empty()) return std::nullopt;
  const date::year_month_day candidate =
      date::year(*year) / date::month(static_cast<unsigned>(*month)) / date::day(static_cast<unsigned>(*day));
  if (!candidate.ok()) return std::nullopt;
  return date::local_days(candidate);
}

/// Null for a zone that the database lacks, and when there is no database.
const date::time_zone* findZone(const std::string& name) {
  try {
    return date::locate_zone(name);
  } catch (const std::runtime_error&) {
    return nullptr;
  }
}

date::sys_seconds startOfDay(date::local_days day, const date::time_zone* zone) {
  const date::local_seconds midnight = day;
  if (!zone) return date::sys_seconds(midnight.time_since_epoch());
  const date::local_info info = zone->get_info(midnight);
  switch (info.result) {
    case date::local_info::nonexistent:
      return info.second.begin;
    case date::local_info::ambiguous:
      return date::sys_seconds(midnight.time_since_epoch() - info.second.offset);
    default:
      return date::sys_seconds(midnight.time_since_epoch() - info.first.offset);
  }
}

}  // namespace

std::optional<Date> startOfDay(std::string_view day, const std::string& timeZone) {
  const auto parsed = parsedDay(day);
  if (!parsed) return std::nullopt;
  return startOfDay(*parsed, findZone(timeZone));
}

}  // namespace ZAK
