#include "auth/DefaultTokenSupplicant.hpp"

#include "auth/AuthDomain.hpp"

#include <zvapikit/core/FirebaseAuthentifier.hpp>
#include <zvapikit/core/RequestExecutor.hpp>

namespace ZAK {

struct DefaultTokenSupplicant::State {
  Configuration configuration;
  std::string authBase;
  std::shared_ptr<RequestExecutor> executor;
  DelegateReference<FirebaseAuthentifier> firebaseAuthentifier;
  DelegateReference<LoggerDelegate> logger;

  static boost::asio::awaitable<TokenDto> send(std::shared_ptr<const State> state, HTTPRequest request) {
    request.maxRetries = 5;
    TokenDto token;
    co_await state->executor->execute(std::move(request), DecodeTarget::of(token));
    co_return token;
  }

  static boost::asio::awaitable<TokenDto> create(std::shared_ptr<const State> state) {
    std::optional<std::string> firebaseToken;
    if (const auto firebase = state->firebaseAuthentifier.lock()) firebaseToken = co_await firebase->idToken();
    HTTPRequest request = AuthDomain::createTokenRequest(state->authBase, state->configuration.environment,
                                                         std::move(firebaseToken), state->logger);
    co_return co_await send(state, std::move(request));
  }

  static boost::asio::awaitable<TokenDto> refresh(std::shared_ptr<const State> state, TokenDto token) {
    HTTPRequest request =
        AuthDomain::refreshTokenRequest(state->authBase, state->configuration.environment, token, state->logger);
    co_return co_await send(state, std::move(request));
  }
};

DefaultTokenSupplicant::DefaultTokenSupplicant(Configuration configuration, std::string authBase,
                                               std::shared_ptr<RequestExecutor> executor,
                                               DelegateReference<FirebaseAuthentifier> firebaseAuthentifier,
                                               DelegateReference<LoggerDelegate> logger)
    : state_(std::make_shared<const State>(State{configuration, std::move(authBase), std::move(executor),
                                                 std::move(firebaseAuthentifier), std::move(logger)})) {}

boost::asio::awaitable<TokenDto> DefaultTokenSupplicant::createToken() { return State::create(state_); }

boost::asio::awaitable<TokenDto> DefaultTokenSupplicant::refreshToken(TokenDto token) {
  return State::refresh(state_, std::move(token));
}

}  // namespace ZAK
