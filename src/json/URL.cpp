#include <zvapikit/json/URL.hpp>

#include <boost/url/parse.hpp>
#include <boost/url/url_view.hpp>

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cstdint>

namespace ZAK {
namespace {

namespace urls = boost::urls;

constexpr std::string_view unreservedMarks = "-._~";
constexpr std::string_view subDelimiters = "!$&'()*+,;=";

constexpr bool isAlphanumeric(unsigned char c) noexcept {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

enum CharacterClass : unsigned char { inHost = 1, inPath = 2, inQuery = 4 };

/// Which characters stand for themselves in a host name, a path, and a query or fragment (RFC 3986).
constexpr std::array<unsigned char, 256> characterClasses = [] {
  std::array<unsigned char, 256> classes{};
  for (unsigned i = 0; i < 256; ++i) {
    const char c = static_cast<char>(i);
    const bool unreserved =
        isAlphanumeric(static_cast<unsigned char>(i)) || unreservedMarks.find(c) != std::string_view::npos;
    if (unreserved) classes[i] |= inHost;
    if (unreserved || subDelimiters.find(c) != std::string_view::npos || c == ':' || c == '@') {
      classes[i] |= inPath | inQuery;
    }
    if (c == '/') classes[i] |= inPath | inQuery;
    if (c == '?') classes[i] |= inQuery;
  }
  return classes;
}();

constexpr bool isA(CharacterClass wanted, char c) noexcept {
  return (characterClasses[static_cast<unsigned char>(c)] & wanted) != 0;
}

constexpr bool isHexDigit(char c) noexcept {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

constexpr bool isEscape(std::string_view text, std::size_t position) noexcept {
  return text[position] == '%' && position + 2 < text.size() && isHexDigit(text[position + 1]) &&
         isHexDigit(text[position + 2]);
}

/// Where the path begins: behind the scheme and the authority, as far as the text has them.
std::size_t pathStart(std::string_view text) noexcept {
  std::size_t start = 0;
  const std::size_t mark = text.find_first_of(":/?#");
  if (mark != std::string_view::npos && mark > 0 && text[mark] == ':') start = mark + 1;
  if (text.substr(start).starts_with("//")) start = std::min(text.find_first_of("/?#", start + 2), text.size());
  return start;
}

/// The text with everything that is not legal in its path, query and fragment percent-encoded.
std::string escaped(std::string_view text) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  const std::size_t start = pathStart(text);
  std::string result(text.substr(0, start));
  CharacterClass part = inPath;
  bool inFragment = false;
  for (std::size_t i = start; i < text.size(); ++i) {
    const char c = text[i];
    const bool opensQuery = c == '?' && part == inPath;
    const bool opensFragment = c == '#' && !inFragment;
    if (opensQuery || opensFragment) {
      part = inQuery;
      inFragment |= opensFragment;
      result += c;
    } else if (isA(part, c) || isEscape(text, i)) {
      result += c;
    } else {
      const auto byte = static_cast<unsigned char>(c);
      result += '%';
      result += digits[byte >> 4];
      result += digits[byte & 15];
    }
  }
  return result;
}

/// Behind the characters of the class, and the escapes, that stand from `position` on.
std::size_t endOf(CharacterClass wanted, std::string_view text, std::size_t position) noexcept {
  // Eight at a time: a jump for each character would cost more than the look at the table.
  while (position + 8 <= text.size()) {
    unsigned common = wanted;
    for (std::size_t i = position; i < position + 8; ++i)
      common &= characterClasses[static_cast<unsigned char>(text[i])];
    if (common == 0) break;
    position += 8;
  }
  while (position < text.size() && (isA(wanted, text[position]) || isEscape(text, position))) ++position;
  return position;
}

/// Recognises the usual kind of URL without a parser: https, a plain host name, and nothing that needs escaping.
bool isPlainHTTPS(std::string_view text) noexcept {
  constexpr std::string_view prefix = "https://";
  if (!text.starts_with(prefix)) return false;
  std::size_t i = prefix.size();
  // What begins like an address is left to the parser: it takes 1.2.3.4 for the host of https://1.2.3.4x/.
  if (i < text.size() && text[i] >= '0' && text[i] <= '9') return false;
  while (i < text.size() && isA(inHost, text[i])) ++i;
  if (i == prefix.size() || i == text.size() || text[i] != '/') return false;
  i = endOf(inPath, text, i);
  if (i < text.size() && text[i] == '?') i = endOf(inQuery, text, i);
  return i == text.size();
}

bool isValid(std::string_view text) {
  // A scheme and an empty query or fragment mean nothing, and the parser's debug build ends the process over them.
  const std::size_t start = pathStart(text);
  if (start > 0 && start + 1 == text.size() && (text[start] == '?' || text[start] == '#')) return false;
  const auto parsed = urls::parse_uri_reference({text.data(), text.size()});
  if (!parsed) return false;
  // The parser ends an authority at the first character that does not fit, and takes the rest for the path.
  const auto path = parsed->encoded_path();
  if (parsed->has_authority() && !path.empty() && path.front() != '/') return false;
  if (parsed->has_port() && !parsed->port().empty()) {
    const auto digits = parsed->port();
    std::uint16_t number = 0;
    if (std::from_chars(digits.data(), digits.data() + digits.size(), number).ec != std::errc()) return false;
  }
  const urls::scheme scheme = parsed->scheme_id();
  const bool needsHost = scheme == urls::scheme::http || scheme == urls::scheme::https;
  return !needsHost || !parsed->encoded_host().empty();
}

urls::url_view view(const std::string& text) { return urls::url_view(text); }

std::string lowerCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

}  // namespace

std::optional<URL> URL::parse(std::string_view text) {
  if (text.empty()) return std::nullopt;
  if (isPlainHTTPS(text)) return URL(std::string(text));
  std::string whole = escaped(text);
  if (!isValid(whole)) return std::nullopt;
  return URL(std::move(whole));
}

std::string URL::scheme() const {
  const std::size_t mark = text_.find_first_of(":/?#");
  return mark != std::string::npos && text_[mark] == ':' ? lowerCase(text_.substr(0, mark)) : std::string();
}

std::string URL::host() const { return lowerCase(std::string(view(text_).host_address())); }

std::optional<int> URL::port() const {
  const urls::url_view parsed = view(text_);
  if (parsed.has_port() && !parsed.port().empty()) return static_cast<int>(parsed.port_number());
  if (parsed.scheme_id() == urls::scheme::https) return 443;
  if (parsed.scheme_id() == urls::scheme::http) return 80;
  return std::nullopt;
}

std::string URL::path() const { return std::string(view(text_).encoded_path()); }

std::string URL::pathExtension() const {
  const std::string path = view(text_).path();
  const std::string component = path.substr(path.rfind('/') + 1);
  const std::size_t dot = component.rfind('.');
  if (dot == std::string::npos || dot == 0) return {};
  return component.substr(dot + 1);
}

std::string_view URL::withoutQuery() const noexcept {
  return std::string_view(text_).substr(0, text_.find_first_of("?#"));
}

bool URL::hasSameOrigin(const URL& other) const {
  return scheme() == other.scheme() && host() == other.host() && port() == other.port();
}

}  // namespace ZAK
