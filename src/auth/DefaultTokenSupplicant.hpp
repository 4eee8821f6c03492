#pragma once

#include "auth/TokenSupplicant.hpp"

#include <zvapikit/core/Configuration.hpp>
#include <zvapikit/core/DelegateReference.hpp>

#include <memory>
#include <string>

namespace ZAK {

class FirebaseAuthentifier;
class LoggerDelegate;
class RequestExecutor;

/// Exchanges tokens through the authentication server's request executor. Each request may be sent six times, as its
/// validator decides.
class DefaultTokenSupplicant final : public TokenSupplicant {
 public:
  DefaultTokenSupplicant(Configuration configuration, std::string authBase, std::shared_ptr<RequestExecutor> executor,
                         DelegateReference<FirebaseAuthentifier> firebaseAuthentifier,
                         DelegateReference<LoggerDelegate> logger);

  boost::asio::awaitable<TokenDto> createToken() override;
  boost::asio::awaitable<TokenDto> refreshToken(TokenDto token) override;

 private:
  struct State;
  std::shared_ptr<const State> state_;
};

}  // namespace ZAK
