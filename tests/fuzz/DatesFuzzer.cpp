// Dates: as text in both forms, as numbers of seconds, and from any instant that a Date can hold.
#include "fuzz/Fuzzing.hpp"

#include <zvapikit/json/JSONDecoder.hpp>
#include <zvapikit/json/JSONEncoder.hpp>
#include <zvapikit/json/JavaScriptISO8601DateFormatter.hpp>

#include <cstring>

using ZAK::Date;
using ZAK::JSONDateStrategy;
using ZAK::Fuzzing::require;
using Formatter = ZAK::JavaScriptISO8601DateFormatter;

namespace {

/// What is written and read again; absent when it has no JSON form.
std::optional<Date> throughJSON(Date date, JSONDateStrategy dates) {
  std::string text;
  try {
    text = ZAK::JSONEncoder(dates).encode(date);
  } catch (const ZAK::EncodingError&) {
    return std::nullopt;
  }
  return ZAK::JSONDecoder(dates).decode<Date>(text);
}

void readText(std::string_view text) {
  const auto fractional = Formatter::fractional(text);
  const auto plain = Formatter::plain(text);
  const auto date = Formatter::date(text);
  require(!fractional || !plain, "a text has a fraction or has none", text);
  require(date == (fractional ? fractional : plain), "either form is read", text);
  if (!date) return;
  const std::string written = Formatter::string(*date);
  require(Formatter::fractional(written) == date, "what is read is written with a fraction and read again", text);
  require(Formatter::string(*date) == written && !Formatter::plain(written), "the written form is stable", text);
  require(throughJSON(*date, JSONDateStrategy::javaScriptISO8601) == date, "what is read can be sent", text);
}

void readNumber(std::string_view text) {
  constexpr auto seconds = JSONDateStrategy::secondsSince2001;
  try {
    const Date date = ZAK::JSONDecoder(seconds).decode<Date>(text);
    require(throughJSON(date, seconds) == date, "a number that is read can be written and read again", text);
  } catch (const ZAK::DecodingError&) {
  }
}

void writeInstant(Date date) {
  const std::string shown = std::to_string(date.time_since_epoch().count());
  if (const auto again = throughJSON(date, JSONDateStrategy::javaScriptISO8601)) {
    require(std::chrono::abs(*again - date) <= std::chrono::microseconds(500), "text keeps the millisecond", shown);
  }
  constexpr auto exact = std::chrono::seconds(7'500'000'000);
  const auto again = throughJSON(date, JSONDateStrategy::secondsSince2001);
  if (again && std::chrono::abs(date.time_since_epoch()) < exact) {
    require(again == date, "a number keeps the microsecond", shown);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input = ZAK::Fuzzing::text(data, size);
  readText(input);
  readNumber(input);
  std::int64_t microseconds = 0;
  std::memcpy(&microseconds, data, std::min(size, sizeof microseconds));
  writeInstant(Date(std::chrono::microseconds(microseconds)));
  return 0;
}
