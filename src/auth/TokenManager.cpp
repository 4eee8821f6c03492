#include "auth/TokenManager.hpp"

#include "core/Log.hpp"

#include <zvapikit/core/ZAKError.hpp>

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/error.hpp>
#include <boost/system/system_error.hpp>

namespace ZAK {
namespace {

/// From this instant the token counts as expired: a minute before it is.
Date expiryDate(const TokenDto& token) { return token.expiresDate - std::chrono::seconds(60); }

/// True when the server refused the request itself, rather than failed to serve it.
bool isRefusal(const ZAKError& error) {
  const HTTPError* httpError = error.underlyingError();
  return httpError && httpError->statusCode().isClientError();
}

}  // namespace

void TokenManager::Call::end(boost::system::error_code error, Token token) {
  if (const auto ended = std::move(waiter)) ended->resume(error, std::move(token));
}

void TokenManager::Refresh::end(const Token& token) {
  for (const auto& call : std::exchange(calls, {})) call->end({}, token);
}

std::shared_ptr<TokenManager> TokenManager::create(const boost::asio::any_io_executor& executor,
                                                   std::unique_ptr<TokenStorage> storage,
                                                   std::unique_ptr<TokenSupplicant> supplicant,
                                                   DelegateReference<LoggerDelegate> logger,
                                                   std::shared_ptr<Clock> clock) {
  auto manager = std::make_shared<TokenManager>(Private(), executor, std::move(storage), std::move(supplicant),
                                                std::move(logger), std::move(clock));
  bindToContext(executor, std::shared_ptr<ContextBound>(manager, manager.get()));
  return manager;
}

TokenManager::TokenManager(Private, const boost::asio::any_io_executor& executor, std::unique_ptr<TokenStorage> storage,
                           std::unique_ptr<TokenSupplicant> supplicant, DelegateReference<LoggerDelegate> logger,
                           std::shared_ptr<Clock> clock)
    : strand_(ContextStrand::create(executor)),
      storage_(std::move(storage)),
      supplicant_(std::move(supplicant)),
      logger_(std::move(logger)),
      clock_(std::move(clock)) {}

/// Runs `step(manager, call)` on the strand and suspends the caller until the call is ended.
template <class Step>
boost::asio::awaitable<TokenManager::Token> TokenManager::enter(std::shared_ptr<TokenManager> self, Step step) {
  // Asked for here, since what an initiation throws is lost.
  auto strand = self->strand_->executor();
  return suspend<Token>([strand = std::move(strand), self = std::move(self), step = std::move(step)](
                            std::unique_ptr<Waiter<Token>> waiter, boost::asio::cancellation_slot slot) mutable {
    auto call = std::make_shared<Call>();
    call->waiter = std::move(waiter);
    if (slot.is_connected()) {
      // Weak throughout: the slot may outlive the execution context, which a strand must not.
      slot.assign([weakSelf = std::weak_ptr(self), weakCall = std::weak_ptr(call)](boost::asio::cancellation_type) {
        if (const auto manager = weakSelf.lock()) manager->cancelLater(weakCall);
      });
    }
    boost::asio::post(strand, [self = std::move(self), call = std::move(call), step = std::move(step)]() mutable {
      step(*self, call);
    });
  });
}

void TokenManager::cancelLater(const std::weak_ptr<Call>& call) {
  try {
    boost::asio::post(strand_->executor(), [call] {
      if (const auto waiting = call.lock()) waiting->end(boost::asio::error::operation_aborted, std::nullopt);
    });
  } catch (const boost::system::system_error&) {  // the execution context has ended, and the call with it
  }
}

boost::asio::awaitable<std::optional<TokenDto>> TokenManager::validToken() {
  return enter(shared_from_this(), [](TokenManager& self, const std::shared_ptr<Call>& call) {  //
    self.retrieveValidToken(call);
  });
}

namespace {

boost::asio::awaitable<void> dropResult(boost::asio::awaitable<std::optional<TokenDto>> call) {
  co_await std::move(call);
}

}  // namespace

boost::asio::awaitable<void> TokenManager::invalidateToken(std::optional<std::string> rejectedAuthorization) {
  return dropResult(enter(shared_from_this(), [rejected = std::move(rejectedAuthorization)](
                                                  TokenManager& self, const std::shared_ptr<Call>& call) {
    self.dropRejectedToken(rejected);
    call->end({}, std::nullopt);
  }));
}

boost::asio::awaitable<void> TokenManager::clear() {
  return dropResult(enter(shared_from_this(), [](TokenManager& self, const std::shared_ptr<Call>& call) {
    self.forget();
    call->end({}, std::nullopt);
  }));
}

void TokenManager::retrieveValidToken(const std::shared_ptr<Call>& call) {
  if (!call->waiter) return;  // cancelled on the way here
  if (refreshTask_) return refreshTask_->calls.push_back(call);
  const Token token = readCurrentToken();
  if (!token || isExpired(*token)) return startRefresh(call);
  setCurrentToken(token);
  call->end({}, token);
}

void TokenManager::startRefresh(const std::shared_ptr<Call>& call) {
  refreshTask_ = std::make_shared<Refresh>();
  refreshTask_->calls.push_back(call);
  boost::asio::co_spawn(strand_->executor(), runRefresh(shared_from_this(), refreshTask_), boost::asio::detached);
}

boost::asio::awaitable<void> TokenManager::runRefresh(std::shared_ptr<TokenManager> self,
                                                      std::shared_ptr<Refresh> refresh) {
  Token token;
  std::exception_ptr failure;
  try {
    token = co_await obtainToken(self);
  } catch (...) {
    failure = std::current_exception();
  }
  self->finishRefresh(*refresh, token, failure);
}

boost::asio::awaitable<TokenDto> TokenManager::obtainToken(std::shared_ptr<TokenManager> self) {
  const Token token = self->readCurrentToken();
  if (!token) co_return co_await self->supplicant_->createToken();
  Log::message(self->logger_, "[TokenManager] refreshing invalid token (expiry date " + Log::text(expiryDate(*token)) +
                                  " VS current date " + Log::text(self->clock_->now()) + ")");
  try {
    co_return co_await self->supplicant_->refreshToken(*token);
  } catch (const ZAKError& error) {
    if (!isRefusal(error)) throw;
    Log::warning(self->logger_, "[TokenManager] clientError when refreshing token");
  }
  co_return co_await self->supplicant_->createToken();
}

void TokenManager::finishRefresh(Refresh& refresh, const Token& token, const std::exception_ptr& failure) {
  if (refreshTask_.get() != &refresh) return;  // forgotten meanwhile: who waited for it has been told
  const auto finished = std::move(refreshTask_);
  if (failure) {
    Log::error(logger_, "[TokenManager] retrieveValidToken error", failure);
    currentToken_.reset();
    storage_->set(std::nullopt);  // also when the token was never loaded from there
  } else {
    setCurrentToken(token);
  }
  finished->end(token);
}

void TokenManager::dropRejectedToken(const std::optional<std::string>& rejectedAuthorization) {
  const Token token = readCurrentToken();
  if (!token || rejectedAuthorization != "Bearer " + token->accessToken || isExpired(*token)) return;
  Log::warning(logger_,
               "[Authentifier] the current stored token seems valid (not expired) but was rejected by the server. "
               "Clear it for requesting a new one");
  currentToken_.reset();
  storage_->set(std::nullopt);
}

void TokenManager::forget() {
  currentToken_.reset();
  storage_->set(std::nullopt);
  if (const auto abandoned = std::move(refreshTask_)) abandoned->end(std::nullopt);
}

void TokenManager::setCurrentToken(const Token& token) {
  if (token == currentToken_) return;
  storage_->set(token);
  currentToken_ = token;
}

TokenManager::Token TokenManager::readCurrentToken() { return currentToken_ ? currentToken_ : storage_->get(); }

bool TokenManager::isExpired(const TokenDto& token) const { return expiryDate(token) < clock_->now(); }

void TokenManager::contextShutdown() noexcept { refreshTask_.reset(); }

}  // namespace ZAK
