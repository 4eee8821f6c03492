#include <zvapikit/http/HTTPHeaders.hpp>

#include <curl/curl.h>

#include <algorithm>

namespace ZAK {

namespace {

char lowerCased(char c) noexcept { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

/// An element's name against another, in ASCII whatever the locale.
auto isNamed(std::string_view name) {
  return [name](const HTTPHeaders::Element& element) {
    return std::equal(element.name.begin(), element.name.end(), name.begin(), name.end(),
                      [](char a, char b) { return lowerCased(a) == lowerCased(b); });
  };
}

}  // namespace

HTTPHeaders::Element HTTPHeaders::Element::userAgent(std::string text) { return {"User-Agent", std::move(text)}; }

HTTPHeaders::Element HTTPHeaders::Element::bearer(std::string_view token) {
  return {"Authorization", std::string("Bearer ").append(token)};
}

HTTPHeaders::Element HTTPHeaders::Element::contentType(std::string_view type) {
  return {"Content-Type", std::string(type)};
}

HTTPHeaders::Element HTTPHeaders::Element::defaultAcceptEncoding() {
  const bool brotli = (curl_version_info(CURLVERSION_NOW)->features & CURL_VERSION_BROTLI) != 0;
  return {"Accept-Encoding", brotli ? "br, gzip, deflate" : "gzip, deflate"};
}

HTTPHeaders::Element HTTPHeaders::Element::defaultAcceptLanguage(const std::vector<std::string>& preferredLanguages) {
  std::string value;
  const std::size_t count = std::min<std::size_t>(preferredLanguages.size(), 6);
  for (std::size_t i = 0; i < count; ++i) {
    if (i > 0) value += ", ";
    value.append(preferredLanguages[i]).append(i == 0 ? ";q=1.0" : ";q=0." + std::to_string(10 - i));
  }
  return {"Accept-Language", std::move(value)};
}

HTTPHeaders::HTTPHeaders(std::vector<Element> elements) {
  elements_.reserve(elements.size());
  for (Element& element : elements) set(std::move(element));
}

void HTTPHeaders::set(Element element) {
  const auto found = std::find_if(elements_.begin(), elements_.end(), isNamed(element.name));
  if (found == elements_.end()) {
    elements_.push_back(std::move(element));
  } else {
    found->value = std::move(element.value);
  }
}

void HTTPHeaders::add(Element element) {
  constexpr std::size_t usualCount = 12;
  if (elements_.empty()) elements_.reserve(usualCount);
  const auto found = std::find_if(elements_.begin(), elements_.end(), isNamed(element.name));
  if (found == elements_.end()) {
    elements_.push_back(std::move(element));
  } else {
    found->value.append(", ").append(element.value);
  }
}

void HTTPHeaders::remove(std::string_view name) { std::erase_if(elements_, isNamed(name)); }

bool HTTPHeaders::contains(std::string_view name) const noexcept {
  return std::any_of(elements_.begin(), elements_.end(), isNamed(name));
}

std::optional<std::string> HTTPHeaders::value(std::string_view name) const {
  const auto found = std::find_if(elements_.begin(), elements_.end(), isNamed(name));
  return found == elements_.end() ? std::nullopt : std::optional(found->value);
}

}  // namespace ZAK
