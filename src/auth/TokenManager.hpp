#pragma once

#include "auth/TokenStorage.hpp"
#include "auth/TokenSupplicant.hpp"
#include "http/ContextStrand.hpp"
#include "http/Waiter.hpp"

#include <zvapikit/core/DelegateReference.hpp>
#include <zvapikit/core/LoggerDelegate.hpp>
#include <zvapikit/http/Clock.hpp>

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/awaitable.hpp>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ZAK {

/// The single owner of the signed-in user's token inside one client. Hands out a token that is valid now, has every
/// concurrent caller share one refresh, and keeps the storage in step.
///
/// An actor: all state is touched on its own strand only. A refresh belongs to the manager, not to its callers: it runs
/// on and applies its outcome once, also when every caller was cancelled or the client is gone.
///
/// Thread safety: any number of calls at once, from any thread; each resumes on its caller's executor. Cancellation
/// ends a call with `operation_aborted`, and touches no token.
class TokenManager final : public std::enable_shared_from_this<TokenManager>, private ContextBound {
  struct Private {
    explicit Private() = default;
  };

 public:
  static std::shared_ptr<TokenManager> create(const boost::asio::any_io_executor& executor,
                                              std::unique_ptr<TokenStorage> storage,
                                              std::unique_ptr<TokenSupplicant> supplicant,
                                              DelegateReference<LoggerDelegate> logger, std::shared_ptr<Clock> clock);
  TokenManager(Private, const boost::asio::any_io_executor& executor, std::unique_ptr<TokenStorage> storage,
               std::unique_ptr<TokenSupplicant> supplicant, DelegateReference<LoggerDelegate> logger,
               std::shared_ptr<Clock> clock);

  /// A token that is good for another minute at least, or none when none could be had; the reason is logged.
  boost::asio::awaitable<std::optional<TokenDto>> validToken();

  /// Drops the current token if it is the one in the Authorization header that the server rejected, and still looked
  /// valid.
  boost::asio::awaitable<void> invalidateToken(std::optional<std::string> rejectedAuthorization);

  /// Forgets the token, in memory and in the storage. Who waits for a refresh gets no token, and what that refresh
  /// brings is dropped.
  boost::asio::awaitable<void> clear();

 private:
  using Token = std::optional<TokenDto>;

  /// One call from its start to its end. The waiter is gone once the call has ended, also by cancellation.
  struct Call {
    std::unique_ptr<Waiter<Token>> waiter;
    void end(boost::system::error_code error, Token token);
  };
  using Calls = std::vector<std::shared_ptr<Call>>;

  /// The one token exchange that is under way, with those who wait for it.
  struct Refresh {
    Calls calls;
    void end(const Token& token);
  };

  template <class Step>
  static boost::asio::awaitable<Token> enter(std::shared_ptr<TokenManager> self, Step step);
  void cancelLater(const std::weak_ptr<Call>& call);
  static boost::asio::awaitable<void> runRefresh(std::shared_ptr<TokenManager> self, std::shared_ptr<Refresh> refresh);
  static boost::asio::awaitable<TokenDto> obtainToken(std::shared_ptr<TokenManager> self);

  // On the strand only:
  void retrieveValidToken(const std::shared_ptr<Call>& call);
  void startRefresh(const std::shared_ptr<Call>& call);
  void finishRefresh(Refresh& refresh, const Token& token, const std::exception_ptr& failure);
  void dropRejectedToken(const std::optional<std::string>& rejectedAuthorization);
  void forget();
  void setCurrentToken(const Token& token);
  [[nodiscard]] Token readCurrentToken();
  [[nodiscard]] bool isExpired(const TokenDto& token) const;

  void contextShutdown() noexcept override;

  std::shared_ptr<ContextStrand> strand_;
  std::unique_ptr<TokenStorage> storage_;
  std::unique_ptr<TokenSupplicant> supplicant_;
  DelegateReference<LoggerDelegate> logger_;
  std::shared_ptr<Clock> clock_;
  Token currentToken_;
  std::shared_ptr<Refresh> refreshTask_;
};

}  // namespace ZAK
