#include <zvapikit/http/HTTPError.hpp>

#include <utility>

namespace ZAK {

HTTPError::HTTPError(Kind kind, HTTPStatusCode status, std::string message, int transportCode,
                     std::shared_ptr<const std::exception> underlyingError)
    : state_(std::make_shared<const State>(
          State{kind, status, std::move(message), transportCode, std::move(underlyingError)})) {}

HTTPError HTTPError::unsuccessful(HTTPStatusCode status) {
  return HTTPError(Kind::status, status, "HTTP " + status.description());
}

HTTPError HTTPError::emptyResponse(HTTPStatusCode status) {
  return HTTPError(Kind::emptyResponse, status, "HTTP " + status.description() + " with an empty body");
}

}  // namespace ZAK
