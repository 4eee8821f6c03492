#pragma once

#include <zvapikit/json/Date.hpp>

#include <optional>
#include <string>
#include <string_view>

namespace ZAK {

/// The first instant of the Gregorian day `yyyy-MM-dd` (month and day may be of one digit) in the time zone of the IANA
/// database; absent when the text is no such day. Of two midnights the later counts. Where the clocks skip midnight it
/// is the instant after the gap. A zone that the machine's database lacks counts as UTC.
std::optional<Date> startOfDay(std::string_view day, const std::string& timeZone);

}  // namespace ZAK
