#include "http/URIText.hpp"

#include <algorithm>

namespace ZAK {

namespace {

constexpr bool isLetter(char c) noexcept { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }
constexpr bool isDigit(char c) noexcept { return c >= '0' && c <= '9'; }
constexpr bool isUnreserved(char c) noexcept {
  return isLetter(c) || isDigit(c) || c == '-' || c == '.' || c == '_' || c == '~';
}

}  // namespace

std::string percentEncoded(std::string_view text) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string encoded;
  encoded.reserve(text.size());
  for (const char c : text) {
    if (isUnreserved(c)) {
      encoded += c;
      continue;
    }
    const auto byte = static_cast<unsigned char>(c);
    encoded += '%';
    encoded += digits[byte >> 4];
    encoded += digits[byte & 15];
  }
  return encoded;
}

std::string expandedTemplate(std::string_view uri, const HTTPRequest::Variables& variables) {
  std::string expanded;
  while (true) {
    const std::size_t open = uri.find('{');
    const std::size_t close = uri.find('}', open);
    if (open == std::string_view::npos || close == std::string_view::npos) break;
    const std::string_view name = uri.substr(open + 1, close - open - 1);
    expanded += uri.substr(0, open);
    const auto variable =
        std::find_if(variables.begin(), variables.end(), [name](const auto& entry) { return entry.first == name; });
    if (variable != variables.end()) expanded += percentEncoded(variable->second);
    uri.remove_prefix(close + 1);
  }
  return expanded.append(uri);
}

bool hasScheme(std::string_view uri) noexcept {
  const std::string_view scheme = uri.substr(0, uri.find("://"));
  return scheme.size() < uri.size() && !scheme.empty() && isLetter(scheme.front()) &&
         std::all_of(scheme.begin(), scheme.end(),
                     [](char c) { return isLetter(c) || isDigit(c) || c == '+' || c == '-' || c == '.'; });
}

std::string joined(std::string_view base, std::string_view path) {
  base = base.substr(0, std::min(base.find('?'), base.find('#')));
  while (base.ends_with('/')) base.remove_suffix(1);
  if (path.starts_with('/')) path.remove_prefix(1);
  return std::string(base).append("/").append(path);
}

std::string withQuery(std::string uri, const std::vector<URLQueryItem>& items) {
  if (items.empty()) return uri;
  uri.resize(std::min(uri.size(), uri.find('#')));
  const bool hasQuery = uri.find('?') != std::string::npos;
  if (!hasQuery) uri += '?';
  bool separated = !hasQuery || uri.ends_with('?') || uri.ends_with('&');
  for (const URLQueryItem& item : items) {
    if (!separated) uri += '&';
    separated = false;
    uri += percentEncoded(item.name);
    if (item.value) uri.append("=").append(percentEncoded(*item.value));
  }
  return uri;
}

}  // namespace ZAK
