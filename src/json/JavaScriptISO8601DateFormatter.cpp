#include "json/DateText.hpp"

#include <zvapikit/json/JavaScriptISO8601DateFormatter.hpp>

namespace ZAK {
namespace {

using std::chrono::days;
using std::chrono::floor;
using std::chrono::milliseconds;

constexpr std::size_t secondsEnd = 19;  // of YYYY-MM-DDThh:mm:ss

/// True for what has a text, once rounded to the millisecond.
constexpr bool hasText(Date date) noexcept {
  constexpr Date first = std::chrono::sys_days(std::chrono::year(1) / 1 / 1);
  constexpr Date end = std::chrono::sys_days(std::chrono::year(10000) / 1 / 1);
  return date >= first && date < end - std::chrono::microseconds(500);
}

constexpr bool isDigit(char c) noexcept { return c >= '0' && c <= '9'; }

/// The number written by `count` digits at `position`; -1 when one of them is no digit. The text is long enough.
int number(std::string_view text, std::size_t position, std::size_t count) noexcept {
  int value = 0;
  for (std::size_t i = position; i < position + count; ++i) {
    if (!isDigit(text[i])) return -1;
    value = value * 10 + (text[i] - '0');
  }
  return value;
}

/// Reads the first 19 characters.
std::optional<Date> dateTime(std::string_view text) noexcept {
  if (text.size() <= secondsEnd) return std::nullopt;
  if (text[4] != '-' || text[7] != '-' || text[10] != 'T' || text[13] != ':' || text[16] != ':') return std::nullopt;
  const int year = number(text, 0, 4);
  const int month = number(text, 5, 2);
  const int day = number(text, 8, 2);
  const int hour = number(text, 11, 2);
  const int minute = number(text, 14, 2);
  const int second = number(text, 17, 2);
  if (year < 1 || month < 0 || day < 0 || minute < 0 || minute > 59 || second < 0 || second > 59) return std::nullopt;
  const bool endOfDay = hour == 24 && minute == 0 && second == 0;
  if (hour < 0 || (hour > 23 && !endOfDay)) return std::nullopt;
  const std::chrono::year_month_day ymd{std::chrono::year(year), std::chrono::month(static_cast<unsigned>(month)),
                                        std::chrono::day(static_cast<unsigned>(day))};
  if (!ymd.ok()) return std::nullopt;
  return Date(std::chrono::sys_days(ymd)) + std::chrono::hours(hour) + std::chrono::minutes(minute) +
         std::chrono::seconds(second);
}

/// The offset from UTC that the text consists of.
std::optional<std::chrono::minutes> offset(std::string_view text) noexcept {
  if (text == "Z" || text == "z") return std::chrono::minutes(0);
  if (text.size() < 3 || (text[0] != '+' && text[0] != '-')) return std::nullopt;
  const int hours = number(text, 1, 2);
  int minutes = 0;
  if (text.size() == 5) {
    minutes = number(text, 3, 2);
  } else if (text.size() == 6 && text[3] == ':') {
    minutes = number(text, 4, 2);
  } else if (text.size() != 3) {
    return std::nullopt;
  }
  if (hours < 0 || hours > 23 || minutes < 0 || minutes > 59) return std::nullopt;
  const auto distance = std::chrono::hours(hours) + std::chrono::minutes(minutes);
  return text[0] == '-' ? -distance : distance;
}

/// `end` is where the offset begins, the part before it having been read as `fraction`.
std::optional<Date> instant(std::string_view text, std::size_t end, milliseconds fraction) noexcept {
  const std::optional<Date> local = dateTime(text);
  const std::optional<std::chrono::minutes> distance = offset(text.substr(end));
  if (!local || !distance) return std::nullopt;
  if (text[11] == '2' && text[12] == '4' && fraction.count() != 0) return std::nullopt;
  const Date result = *local + fraction - *distance;
  return hasText(result) ? std::optional(result) : std::nullopt;
}

}  // namespace

std::optional<Date> JavaScriptISO8601DateFormatter::fractional(std::string_view text) noexcept {
  if (text.size() < secondsEnd + 3 || text[secondsEnd] != '.') return std::nullopt;
  std::size_t end = secondsEnd + 1;
  int fraction = 0;
  for (; end < text.size() && isDigit(text[end]); ++end) {
    if (end < secondsEnd + 4) fraction = fraction * 10 + (text[end] - '0');
  }
  const std::size_t digits = end - secondsEnd - 1;
  if (digits < 1 || digits > 9) return std::nullopt;
  for (std::size_t i = digits; i < 3; ++i) fraction *= 10;
  return instant(text, end, milliseconds(fraction));
}

std::optional<Date> JavaScriptISO8601DateFormatter::plain(std::string_view text) noexcept {
  if (text.size() <= secondsEnd) return std::nullopt;
  return instant(text, secondsEnd, milliseconds(0));
}

std::optional<Date> JavaScriptISO8601DateFormatter::date(std::string_view text) noexcept {
  if (const std::optional<Date> result = fractional(text)) return result;
  return plain(text);
}

std::string JavaScriptISO8601DateFormatter::string(Date date) {
  char text[detail::dateTextSize];
  return detail::writeDateText(date, text) ? std::string(text, sizeof text) : std::string();
}

bool detail::writeDateText(Date date, char* to) noexcept {
  if (!hasText(date)) return false;
  const auto rounded = floor<milliseconds>(date + std::chrono::microseconds(500));
  const auto day = floor<days>(rounded);
  const std::chrono::year_month_day ymd{day};
  const auto ofDay = static_cast<unsigned>((rounded - day).count());

  const auto write = [&to](std::size_t digits, unsigned number, char end) {
    for (std::size_t i = digits; i > 0; number /= 10) to[--i] = static_cast<char>('0' + number % 10);
    to += digits;
    *to++ = end;
  };
  write(4, static_cast<unsigned>(int(ymd.year())), '-');
  write(2, unsigned(ymd.month()), '-');
  write(2, unsigned(ymd.day()), 'T');
  write(2, ofDay / 3'600'000, ':');
  write(2, ofDay / 60'000 % 60, ':');
  write(2, ofDay / 1000 % 60, '.');
  write(3, ofDay % 1000, 'Z');
  return true;
}

}  // namespace ZAK
