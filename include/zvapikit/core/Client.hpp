#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/core/Configuration.hpp>
#include <zvapikit/core/DelegateReference.hpp>
#include <zvapikit/core/DeviceInfo.hpp>
#include <zvapikit/core/RequestExecutor.hpp>

#include <boost/asio/awaitable.hpp>

#include <memory>

namespace ZAK {

class LoggerDelegate;

/// What endpoint groups send their requests through.
///
/// Calls resume on the caller's executor. They take everything by value and keep the client alive once awaited, so that
/// the host may drop it meanwhile. Cancellation of any type ends a call's transfer or wait at once with
/// `boost::system::system_error` of `operation_aborted`; the server may have acted on the request all the same. A call
/// leaves the awaiting coroutine open to every cancellation type (`enable_total_cancellation`).
///
/// Thread safety: any number of calls at once, from any thread.
class ZVAPIKIT_API Client : public std::enable_shared_from_this<Client> {
 public:
  virtual ~Client() = default;

  [[nodiscard]] virtual const Configuration& configuration() const noexcept = 0;
  [[nodiscard]] virtual const DeviceInfo& deviceInfo() const noexcept = 0;
  [[nodiscard]] virtual std::shared_ptr<LoggerDelegate> logger() const = 0;
  /// Replaces the client's logger. What was built with the client keeps the one it was built with.
  virtual void setLogger(DelegateReference<LoggerDelegate> logger) = 0;

  /// Sends a request below the mobile API's base and decodes its answer. `Result` is any type with a JSON form, a
  /// record of the host's own included; `EmptyDto` also accepts an answer without a body.
  ///
  /// An authenticated request carries the user's token, is sent at most three times, and goes out without a token
  /// when none can be had.
  /// \throws ZAKError `apiError` or `httpError`; DecodingError.
  template <class Result>
  boost::asio::awaitable<Result> fire(HTTPRequest request, bool authenticated) {
    return decoded<Result>(shared_from_this(), std::move(request), authenticated ? Route::signedIn : Route::plain);
  }

  /// Sends a request below the authentication server's base, without a token.
  /// \throws as `fire`.
  template <class Result>
  boost::asio::awaitable<Result> authFire(HTTPRequest request) {
    return decoded<Result>(shared_from_this(), std::move(request), Route::auth);
  }

 protected:
  /// Which server a request is for, and whether it is signed.
  enum class Route { plain, signedIn, auth };

  /// The one operation behind the typed ones.
  virtual boost::asio::awaitable<void> send(HTTPRequest request, Route route, DecodeTarget target) = 0;

 private:
  template <class Result>
  static boost::asio::awaitable<Result> decoded(std::shared_ptr<Client> self, HTTPRequest request, Route route) {
    Result result{};
    co_await self->send(std::move(request), route, DecodeTarget::of(result));
    co_return result;
  }
};

}  // namespace ZAK
