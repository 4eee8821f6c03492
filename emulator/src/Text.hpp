#pragma once

#include <zvapikit/json/Date.hpp>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ZAK::EmulatorText {

struct QueryItem {
  std::string name;
  std::optional<std::string> value;  ///< absent for `?name`, empty for `?name=`
};

[[nodiscard]] std::string percentDecoded(std::string_view text);
/// Everything but `A-Z a-z 0-9 - . _ ~ /` as percent-encoded bytes.
[[nodiscard]] std::string percentEncodedPath(std::string_view path);
/// What a request for an absolute URL names: path and query.
[[nodiscard]] std::string targetOf(std::string_view url);
[[nodiscard]] std::vector<QueryItem> parseQuery(std::string_view target);
[[nodiscard]] bool equalIgnoringCase(std::string_view a, std::string_view b) noexcept;
/// `2023-04-05T17:09:12.345Z`
[[nodiscard]] std::string dateText(Date date);
/// Accepts that very form alone: it is the only one the app writes.
[[nodiscard]] std::optional<Date> parseDate(std::string_view text);
/// `2023-04-05`, the UTC day.
[[nodiscard]] std::string dayText(Date date);
/// Lower-case hexadecimal digits of 128 random bits.
[[nodiscard]] std::string randomHex();
/// The SHA-256 of the bytes in lower-case hexadecimal digits.
[[nodiscard]] std::string sha256Hex(std::string_view bytes);

}  // namespace ZAK::EmulatorText
