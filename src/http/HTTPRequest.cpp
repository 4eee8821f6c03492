#include "http/URIText.hpp"

#include <zvapikit/http/HTTPRequest.hpp>

#include <algorithm>

namespace ZAK {

HTTPRequest::HTTPRequest(HTTPMethod method_, std::string uri, Variables variables)
    : method(method_), uri_(std::move(uri)), variables_(std::move(variables)) {}

HTTPRequest::HTTPRequest(HTTPMethod method_, const URL& url) : HTTPRequest(method_, url.string()) {}

void HTTPRequest::add(URLQueryItem queryItem) { queryItems_.push_back(std::move(queryItem)); }

void HTTPRequest::addParameter(std::string name, std::string value) { add({std::move(name), std::move(value)}); }

bool HTTPRequest::climbsPath() const noexcept {
  return std::any_of(variables_.begin(), variables_.end(),
                     [](const auto& variable) { return variable.second == "." || variable.second == ".."; });
}

std::string HTTPRequest::expandedURI() const { return expandedTemplate(uri_, variables_); }

bool HTTPRequest::isAbsolute() const noexcept { return hasScheme(uri_); }

std::string HTTPRequest::description() const {
  std::string text(rawValue(method));
  if (isAbsolute()) {
    const std::string url = expandedURI();
    return text.append(" ").append(url, 0, url.find_first_of("?#"));
  }
  return text.append(" ").append(withQuery(joined("", expandedURI()), queryItems_));
}

}  // namespace ZAK
