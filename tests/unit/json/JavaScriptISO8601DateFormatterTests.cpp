#include <zvapikit/json/JavaScriptISO8601DateFormatter.hpp>

#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <ranges>
#include <string>
#include <string_view>

namespace ZAK {
namespace {

using Formatter = JavaScriptISO8601DateFormatter;

std::optional<long long> milliseconds(std::optional<Date> date) {
  if (!date) return std::nullopt;
  EXPECT_EQ(date->time_since_epoch().count() % 1000, 0);
  return date->time_since_epoch().count() / 1000;
}

constexpr long long base = 1680714552000;  // 2023-04-05T17:09:12Z

TEST(JavaScriptISO8601DateFormatter, ReadsPlainAndFractionalApart) {
  struct {
    const char* text;
    std::optional<long long> plain;
    std::optional<long long> fractional;
  } const cases[] = {
      {"2023-04-05T17:09:12Z", base, {}},
      {"2023-04-05T17:09:12-00:00", base, {}},
      {"2023-04-05T19:39:12+02:30", base, {}},
      {"2023-04-05T19:39:12+0230", base, {}},
      {"2023-04-05T14:09:12-03", base, {}},
      {"2023-04-05T17:09:12.345Z", {}, base + 345},
      {"2023-04-05T17:09:12.3Z", {}, base + 300},
      {"2023-04-05T17:09:12.999999999Z", {}, base + 999},
      {"2023-04-05T18:09:12.001+01:00", {}, base + 1},
      {"2023-03-31T24:00:00Z", 1680307200000, {}},
      {"2000-02-29T00:00:00Z", 951782400000, {}},
      {"0001-01-01T00:00:00Z", -62135596800000, {}},
      {"9999-12-31T23:59:59.999Z", {}, 253402300799999},
      {"1969-12-31T23:59:59.999Z", {}, -1},
  };
  for (const auto& [text, plain, fractional] : cases) {
    EXPECT_EQ(milliseconds(Formatter::plain(text)), plain) << text;
    EXPECT_EQ(milliseconds(Formatter::fractional(text)), fractional) << text;
    EXPECT_EQ(milliseconds(Formatter::date(text)), plain ? plain : fractional) << text;
  }
}

TEST(JavaScriptISO8601DateFormatter, RefusesEverythingElse) {
  constexpr std::string_view cases =
      "2023-04-05|20230405T170912Z|2023-04-05T17:09Z|2023-04-05T17:09:12|2023-04-05t17:09:12Z|2023-04-05 17:09:12Z|"
      "2023-04-05T17.09.12Z|2023-04-05T17:09:60Z|2023-04-05T17:60:12Z|2023-04-05T25:00:00Z|2023-04-05T24:00:01Z|"
      "2023-00-05T17:09:12Z|2023-13-05T17:09:12Z|2023-04-00T17:09:12Z|2023-04-32T17:09:12Z|2023-02-29T17:09:12Z|"
      "1900-02-29T17:09:12Z|0000-04-05T17:09:12Z|-023-04-05T17:09:12Z|2023-04-05T17:09:12+|2023-04-05T17:09:12.Z|"
      "2023-04-05T17:09:12Z | 2023-04-05T17:09:12Z|2023-04-05T17:09:12.345|2023-04-05T17:09:12+01:|"
      "2023-04-05T17:09:12,345Z|2023-04-05T24:00:00.001Z|2023-04-05T17:09:12+01:0|2023-04-05T17:09:12+01:60|"
      "2023-04-05T17:09:12+24:00|2023-04-05T17:09:12+01-00|2023-04-05T17:09:12+01:00Z|2023-04-05T17:09:1\xC2\xB2Z|"
      "2023-04-05T17:09:12.1234567890Z|";
  for (const auto part : std::views::split(cases, '|')) {
    const std::string_view text(part.begin(), part.end());
    EXPECT_FALSE(Formatter::date(text)) << text;
  }
}

TEST(JavaScriptISO8601DateFormatter, WritesMillisecondsRoundedHalfUp) {
  struct {
    long long microseconds;
    const char* text;
  } const cases[] = {
      {0, "1970-01-01T00:00:00.000Z"},
      {base * 1000 + 345000, "2023-04-05T17:09:12.345Z"},
      {999400, "1970-01-01T00:00:00.999Z"},
      {999500, "1970-01-01T00:00:01.000Z"},
      {-500, "1970-01-01T00:00:00.000Z"},
      {-501, "1969-12-31T23:59:59.999Z"},
      {-62135596800000000, "0001-01-01T00:00:00.000Z"},
      {253402300799999499, "9999-12-31T23:59:59.999Z"},
  };
  for (const auto& [microseconds, text] : cases) {
    EXPECT_EQ(Formatter::string(Date(std::chrono::microseconds(microseconds))), text) << microseconds;
  }
  for (const Date date : {Date::min(), Date::max()}) EXPECT_FALSE(Formatter::date(Formatter::string(date)));
}

}  // namespace
}  // namespace ZAK
