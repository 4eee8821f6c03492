#include "http/Redirect.hpp"

#include <utility>

namespace ZAK {
namespace {

RedirectStep failed(HTTPError::Kind kind, const HTTPResponse& response, std::string message) {
  RedirectStep step;
  step.error = HTTPError(kind, response.statusCode, std::move(message));
  return step;
}

}  // namespace

RedirectStep nextStep(const TransferRequest& request, const HTTPResponse& response,
                      const std::optional<std::string>& target, std::size_t followed) {
  const bool follows = request.method == HTTPMethod::get || request.method == HTTPMethod::head;
  if (response.error || !target || request.maxRedirects <= 0 || !follows) return {};
  if (followed >= static_cast<std::size_t>(request.maxRedirects)) {
    return failed(HTTPError::Kind::tooManyRedirects, response, "too many redirects");
  }
  RedirectStep step;
  step.destination = URL::parse(*target);
  if (!step.destination || step.destination->scheme() != "https") {
    return failed(HTTPError::Kind::other, response, "redirected to an address that is not https");
  }
  return step;
}

void redirect(TransferRequest& request, const URL& destination) {
  const auto origin = URL::parse(request.url);
  if (!origin || !origin->hasSameOrigin(destination)) {
    request.headers = HTTPHeaders();
    request.body = HTTPBody();
  }
  request.url = destination.string();
}

}  // namespace ZAK
