// Requests: whatever fills a template, a query or a header, it goes to the server meant, below its base, and cannot
// break out of its place.
#include "fuzz/Fuzzing.hpp"
#include "http/PreparedRequest.hpp"
#include "http/URIText.hpp"

#include <zvapikit/http/HTTPError.hpp>

using namespace ZAK;
using Fuzzing::require;

namespace {

const std::optional<URL> base = URL::parse("https://api.example:8443/main/api/");

std::optional<PreparedRequest> preparedOrRefused(const HTTPRequest& request, const HTTPHeaders& headers = {}) {
  try {
    return prepared(request, {base, headers, 0});
  } catch (const HTTPError& error) {
    require(error.kind() == HTTPError::Kind::invalidRequest, "a refusal says that the request is not valid");
    return std::nullopt;
  }
}

/// Claims that hold for every URL that leaves; the address of the server, as the transport sees it.
std::optional<Fuzzing::SentURL> checkedURL(const PreparedRequest& request) {
  const std::string& text = request.transfer.url;
  require(Fuzzing::isVisibleASCII(text), "a URL is visible ASCII", text);
  const auto sent = Fuzzing::asSent(text);
  require(!sent || (sent->host == request.url.host() && sent->port == std::to_string(request.url.port().value_or(0))),
          "the transport sees the same server", text);
  return sent;
}

void checkValues(const std::string& value, const std::string& name) {
  const std::string encoded = percentEncoded(value);
  require(Fuzzing::percentDecoded(encoded) == value, "percent-encoding keeps the value", value);

  HTTPRequest request(HTTPMethod::get, "/posts/{id}/x", {{"id", value}});
  request.addParameter(name, value);
  const auto ready = preparedOrRefused(request);
  require(ready.has_value() != (value == "." || value == ".."), "a value is refused only when it climbs", value);
  if (!ready) return;
  require(ready->transfer.url ==
              "https://api.example:8443/main/api/posts/" + encoded + "/x?" + percentEncoded(name) + "=" + encoded,
          "values stay in their places", ready->transfer.url);
  const auto sent = checkedURL(*ready);
  require(sent && Fuzzing::percentDecoded(sent->path) == "/main/api/posts/" + value + "/x", "the path is not bent",
          ready->transfer.url);
}

/// A template with anything in it.
void checkTemplate(const std::string& uri, const std::string& name, const std::string& value) {
  const HTTPRequest request(HTTPMethod::get, uri, {{name, value}});
  static_cast<void>(request.description());
  HTTPHeaders headers;
  headers.set(HTTPHeaders::Element::bearer("secret"));
  const auto ready = preparedOrRefused(request, headers);
  if (!ready) return;
  if (const auto sent = checkedURL(*ready)) {
    require(sent->host == "api.example" && sent->port == "8443", "the token goes to the base's server only",
            ready->transfer.url);
  }
  require(request.isAbsolute() || ready->transfer.url.starts_with(base->string()), "a path starts with the base",
          ready->transfer.url);
}

void checkHeader(const std::string& name, const std::string& value) {
  HTTPRequest request(HTTPMethod::post, "/posts");
  request.headers.set({name, value});
  const auto ready = preparedOrRefused(request);
  if (!ready) return;
  for (const auto& element : ready->transfer.headers.elements()) {
    require(Fuzzing::isVisibleASCII(element.name) && element.name.find(':') == std::string::npos, "a name is a token");
    require(!element.name.empty() && element.value.find_first_of(std::string("\r\n\0", 3)) == std::string::npos,
            "a header is one line", element.value);
  }
  require(ready->transfer.headers.value(name) == value, "a header that is sent is sent whole", value);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view input = Fuzzing::text(data, size);
  const std::string uri = Fuzzing::takePiece(input);
  const std::string name = Fuzzing::takePiece(input);
  const std::string value(input);
  checkValues(value, name);
  checkTemplate(uri, name, value);
  checkHeader(name, value);
  return 0;
}
