#pragma once

#include <zvapikit/auth/TokenDto.hpp>
#include <zvapikit/core/DelegateReference.hpp>
#include <zvapikit/http/HTTPRequest.hpp>

#include <boost/asio/awaitable.hpp>

#include <memory>
#include <optional>

namespace ZAK {

class FirebaseAuthentifier;
class TokenManager;

/// Signs requests with the user's token. Thread safety: any number of calls at once.
class MobileApiAuthentifier {
 public:
  MobileApiAuthentifier(DelegateReference<FirebaseAuthentifier> firebaseAuthentifier,
                        std::shared_ptr<TokenManager> tokenManager)
      : firebaseAuthentifier_(std::move(firebaseAuthentifier)), tokenManager_(std::move(tokenManager)) {}

  /// Signs the request in place, after dropping the token that it carries if the server rejected it. Nothing is
  /// signed when the authentifier is gone. Fails by cancellation only, and then leaves the request as it was.
  static boost::asio::awaitable<void> authorize(std::weak_ptr<MobileApiAuthentifier> weakSelf,
                                                std::shared_ptr<HTTPRequest> request, bool afterRejection);

  /// Puts the token into the request, or takes any other out when there is none.
  static void sign(HTTPRequest& request, const std::optional<TokenDto>& token);

  /// A request that was rejected or is signed in may be sent this often again.
  static constexpr int maxRetries = 2;

  [[nodiscard]] const std::shared_ptr<TokenManager>& tokenManager() const noexcept { return tokenManager_; }
  [[nodiscard]] std::shared_ptr<FirebaseAuthentifier> firebaseAuthentifier() const noexcept {
    return firebaseAuthentifier_.lock();
  }

 private:
  DelegateReference<FirebaseAuthentifier> firebaseAuthentifier_;
  std::shared_ptr<TokenManager> tokenManager_;
};

}  // namespace ZAK
