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
/// Repeats: the kit sends an authenticated request at most three times. It sends it again
/// - when the transfer failed before a byte of an answer came, after 0.5 to 1 s and then 1 to 2 s: a GET, HEAD, PUT or
///   DELETE, never a POST or PATCH, since the server may have acted on it;
/// - with a new token, whatever the method, when the server refused the old one (401, 403 without an `ErrorDto::Key`).
///
/// No other answer is asked for twice. Without authentication only the first rule holds, up to
/// `HTTPRequest::maxRetries`. Uncounted, what may be repeated and meets a kept connection that the server has closed
/// goes out on a fresh one at once. Each operation says whether the host may make it again.
///
/// Thread safety: any number of calls at once, from any thread.
class ZVAPIKIT_API Client : public std::enable_shared_from_this<Client> {
 public:
  virtual ~Client() = default;

  /// The environment that the client talks to.
  [[nodiscard]] virtual const Configuration& configuration() const noexcept = 0;
  /// The device that its requests tell of.
  [[nodiscard]] virtual const DeviceInfo& deviceInfo() const noexcept = 0;
  /// The host's logger; null when there is none or it is gone.
  [[nodiscard]] virtual std::shared_ptr<LoggerDelegate> logger() const = 0;
  /// Replaces the client's logger. What was built with the client keeps the one it was built with.
  virtual void setLogger(DelegateReference<LoggerDelegate> logger) = 0;

  /// Sends a request below the mobile API's base and decodes its answer. `Result` is any type with a JSON form, a
  /// record of the host's own included; `EmptyDto` also accepts an answer without a body.
  ///
  /// An authenticated request carries the user's token, which may first have to be obtained, and goes out without one
  /// when none can be had.
  /// \throws ZAKError `apiError` or `httpError`, or `urlNotValid` when a path variable would climb the path;
  ///   DecodingError; boost::system::system_error of `operation_aborted` after a cancellation.
  template <class Result>
  boost::asio::awaitable<Result> fire(HTTPRequest request, bool authenticated) {
    return decoded<Result>(shared_from_this(), std::move(request), authenticated ? Route::signedIn : Route::plain);
  }

  /// Sends a request below the authentication server's base, without a token.
  /// \throws ZAKError and others as `fire`.
  template <class Result>
  boost::asio::awaitable<Result> authFire(HTTPRequest request) {
    return decoded<Result>(shared_from_this(), std::move(request), Route::auth);
  }

 protected:
  /// Which server a request is for, and whether it is signed.
  enum class Route {
    plain,     ///< the mobile API, without a token
    signedIn,  ///< the mobile API, as the user
    auth       ///< the authentication server
  };

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
