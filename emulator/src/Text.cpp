#include "Text.hpp"

#include <openssl/evp.h>
#include <openssl/rand.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <stdexcept>

namespace ZAK::EmulatorText {

namespace {

constexpr std::string_view hexDigits = "0123456789ABCDEF";

constexpr char lower(char c) noexcept { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool isUnreserved(char c) noexcept {
  return (lower(c) >= 'a' && lower(c) <= 'z') || (c >= '0' && c <= '9') ||
         std::string_view("-._~").find(c) != std::string_view::npos;
}

/// The number that the digits at a fixed place spell.
int digits(std::string_view text, std::size_t from, std::size_t count) {
  int value = 0;
  std::from_chars(text.data() + from, text.data() + from + count, value);
  return value;
}

template <std::size_t count>
std::string lowerHex(const std::array<unsigned char, count>& bytes) {
  std::string result;
  for (const unsigned char byte : bytes) {
    result += lower(hexDigits[byte >> 4]);
    result += lower(hexDigits[byte & 15]);
  }
  return result;
}

}  // namespace

std::string percentDecoded(std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    unsigned value = 0;
    const char* const first = text.data() + i + 1;
    if (text[i] == '%' && i + 2 < text.size() && std::from_chars(first, first + 2, value, 16).ptr == first + 2) {
      result += static_cast<char>(value);
      i += 2;
    } else {
      result += text[i];
    }
  }
  return result;
}

std::string percentEncodedPath(std::string_view path) {
  std::string result;
  for (const char c : path) {
    if (isUnreserved(c) || c == '/') {
      result += c;
      continue;
    }
    const auto byte = static_cast<unsigned char>(c);
    result += '%';
    result += hexDigits[byte >> 4];
    result += hexDigits[byte & 15];
  }
  return result;
}

std::string targetOf(std::string_view url) {
  const std::size_t host = url.find("://") + 3;
  return std::string(url.substr(url.find('/', host)));
}

std::vector<QueryItem> parseQuery(std::string_view target) {
  std::vector<QueryItem> items;
  const std::size_t mark = target.find('?');
  if (mark == std::string_view::npos) return items;
  std::string_view rest = target.substr(mark + 1);
  while (!rest.empty()) {
    const std::string_view item = rest.substr(0, rest.find('&'));
    rest.remove_prefix(std::min(item.size() + 1, rest.size()));
    const std::size_t equals = item.find('=');
    QueryItem parsed{percentDecoded(item.substr(0, equals)), std::nullopt};
    if (equals != std::string_view::npos) parsed.value = percentDecoded(item.substr(equals + 1));
    items.push_back(std::move(parsed));
  }
  return items;
}

bool equalIgnoringCase(std::string_view a, std::string_view b) noexcept {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return lower(x) == lower(y); });
}

std::string dayText(Date date) {
  const std::chrono::year_month_day day{std::chrono::floor<std::chrono::days>(date)};
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02u-%02u", static_cast<int>(day.year()),
                static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()));
  return text.data();
}

std::string dateText(Date date) {
  using namespace std::chrono;
  const hh_mm_ss time{floor<milliseconds>(date - floor<days>(date))};
  std::array<char, 48> text{};
  std::snprintf(text.data(), text.size(), "T%02d:%02d:%02d.%03dZ", static_cast<int>(time.hours().count()),
                static_cast<int>(time.minutes().count()), static_cast<int>(time.seconds().count()),
                static_cast<int>(time.subseconds().count()));
  return dayText(date) + text.data();
}

std::optional<Date> parseDate(std::string_view text) {
  using namespace std::chrono;
  constexpr std::string_view form = "dddd-dd-ddTdd:dd:dd.dddZ";
  const bool fits = std::equal(text.begin(), text.end(), form.begin(), form.end(),
                               [](char c, char f) { return f == 'd' ? c >= '0' && c <= '9' : c == f; });
  if (!fits) return std::nullopt;
  const year_month_day day{year(digits(text, 0, 4)), month(static_cast<unsigned>(digits(text, 5, 2))),
                           std::chrono::day(static_cast<unsigned>(digits(text, 8, 2)))};
  const int hour = digits(text, 11, 2), minute = digits(text, 14, 2), second = digits(text, 17, 2);
  if (!day.ok() || hour > 23 || minute > 59 || second > 59) return std::nullopt;
  return Date(sys_days(day) + hours(hour) + minutes(minute) + seconds(second) + milliseconds(digits(text, 20, 3)));
}

std::string randomHex() {
  std::array<unsigned char, 16> bytes{};
  if (RAND_bytes(bytes.data(), static_cast<int>(bytes.size())) != 1) throw std::runtime_error("no random bytes");
  return lowerHex(bytes);
}

std::string sha256Hex(std::string_view bytes) {
  std::array<unsigned char, 32> digest{};
  if (EVP_Digest(bytes.data(), bytes.size(), digest.data(), nullptr, EVP_sha256(), nullptr) != 1) {
    throw std::runtime_error("no digest");
  }
  return lowerHex(digest);
}

}  // namespace ZAK::EmulatorText
