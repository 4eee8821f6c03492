#include "auth/MobileApiAuthentifier.hpp"

#include "auth/TokenManager.hpp"

namespace ZAK {

boost::asio::awaitable<void> MobileApiAuthentifier::authorize(std::weak_ptr<MobileApiAuthentifier> weakSelf,
                                                              std::shared_ptr<HTTPRequest> request,
                                                              bool afterRejection) {
  const auto self = weakSelf.lock();
  if (!self) co_return;
  if (afterRejection) {
    request->maxRetries = maxRetries;
    co_await self->tokenManager_->invalidateToken(request->headers.value("Authorization"));
  }
  const std::optional<TokenDto> token = co_await self->tokenManager_->validToken();
  sign(*request, token);
}

void MobileApiAuthentifier::sign(HTTPRequest& request, const std::optional<TokenDto>& token) {
  if (token) {
    request.headers.set(HTTPHeaders::Element::bearer(token->accessToken));
  } else {
    request.headers.remove("Authorization");
  }
}

}  // namespace ZAK
