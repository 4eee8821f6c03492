#include "http/PreparedRequest.hpp"

#include "http/URIText.hpp"

#include <zvapikit/http/HTTPError.hpp>

#include <algorithm>

namespace ZAK {

namespace {

// The messages quote neither URL nor header value, which may be secrets.
[[noreturn]] void refuse(std::string message) {
  throw HTTPError(HTTPError::Kind::invalidRequest, HTTPStatusCode(), std::move(message));
}

/// A user in front of the host would be sent as credentials of its own, and parsers differ on where the host begins.
bool carriesCredentials(std::string_view url) noexcept {
  const std::size_t authority = url.find("//") + 2;
  const std::size_t mark = url.find('@', authority);
  return mark != std::string_view::npos && mark < url.find_first_of("/?#", authority);
}

URL wholeURL(const HTTPRequest& request, const std::optional<URL>& baseURL) {
  if (request.climbsPath()) refuse("a path variable is . or ..");
  std::string text = request.expandedURI();
  if (!request.isAbsolute()) {
    if (!baseURL) refuse("no base URL to append the path to");
    text = joined(baseURL->string(), text);
  }
  const std::optional<URL> url = URL::parse(withQuery(std::move(text), request.queryItems()));
  if (!url) refuse("the URL is not valid");
  if (url->scheme() != "https") refuse("the URL is not https");
  if (carriesCredentials(url->string())) refuse("the URL carries credentials");
  return *url;
}

bool isToken(std::string_view name) noexcept {
  return !name.empty() && std::all_of(name.begin(), name.end(), [](char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
           std::string_view("!#$%&'*+-.^_`|~").find(c) != std::string_view::npos;
  });
}

/// The client's headers, then the body's type, then the request's own, which may name another type.
HTTPHeaders mergedHeaders(const HTTPRequest& request, const HTTPHeaders& defaults) {
  HTTPHeaders headers = defaults;
  if (!request.body.contentType().empty() && !request.headers.contains("Content-Type")) {
    headers.set(HTTPHeaders::Element::contentType(request.body.contentType()));
  }
  for (const HTTPHeaders::Element& element : request.headers.elements()) headers.set(element);
  for (const HTTPHeaders::Element& element : headers.elements()) {
    if (!isToken(element.name)) refuse("the name of a header is not valid");
    if (std::any_of(element.value.begin(), element.value.end(),
                    [](char c) { return c == '\r' || c == '\n' || c == '\0'; })) {
      refuse("the value of header " + element.name + " holds a line break or NUL");
    }
  }
  return headers;
}

}  // namespace

PreparedRequest prepared(const HTTPRequest& request, const RequestDefaults& defaults) {
  PreparedRequest result{wholeURL(request, defaults.baseURL), TransferRequest()};
  TransferRequest& transfer = result.transfer;
  transfer.method = request.method;
  transfer.url = result.url.string();
  transfer.headers = mergedHeaders(request, defaults.headers);
  transfer.body = request.body;
  transfer.timeout = request.timeout;
  transfer.maxRedirects = request.maxRedirects.value_or(defaults.maxRedirects);
  transfer.destination = request.destination;
  transfer.progress = request.progress;
  if (request.isAbsolute() && defaults.baseURL && transfer.headers.contains("Authorization") &&
      !result.url.hasSameOrigin(*defaults.baseURL)) {
    refuse("a client's Authorization is for its own server only");
  }
  return result;
}

}  // namespace ZAK
