#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/http/Clock.hpp>
#include <zvapikit/http/HTTPClientDelegate.hpp>
#include <zvapikit/http/HTTPValidator.hpp>
#include <zvapikit/http/Transport.hpp>

#include <boost/asio/awaitable.hpp>

#include <memory>
#include <optional>
#include <vector>

namespace ZAK {

/// Sends requests over a transport: joins them to a base URL and default headers, runs the validators on each
/// attempt's end, and sends again where they ask for it.
///
/// Thread safety: set up first, then use from any thread; the public members must not change while calls run.
class ZVAPIKIT_API HTTPClient : public std::enable_shared_from_this<HTTPClient> {
  /// \cond
  struct Private {
    explicit Private() = default;
  };
  /// \endcond

 public:
  /// A client below `baseURL`; absent means that requests must have absolute URLs.
  ///
  /// The validators start out with the default one, which sends a GET, HEAD, PUT or DELETE again when its transfer
  /// failed: while no byte of an answer has come and within `HTTPRequest::maxRetries`, after 0.5 to 1 s, then twice as
  /// long each time. POST and PATCH it never sends again. A failure of the file system is none of the transfer.
  /// Otherwise it ends the chain with the response's own error.
  /// \throws std::invalid_argument without a transport or a clock.
  static std::shared_ptr<HTTPClient> create(std::shared_ptr<Transport> transport, std::optional<URL> baseURL = {},
                                            std::shared_ptr<Clock> clock = Clock::system());
  /// Not for hosts: use `create`.
  HTTPClient(Private, std::shared_ptr<Transport> transport, std::optional<URL> baseURL, std::shared_ptr<Clock> clock);

  /// Sent with every request that has no header of the same name.
  HTTPHeaders headers;
  /// Run in order on each attempt's end.
  std::vector<std::shared_ptr<HTTPValidator>> validators;
  /// Told of what happens, if it is still there.
  std::weak_ptr<HTTPClientDelegate> delegate;
  /// Redirects that a request follows when it does not say: none.
  int maxRedirects = 0;

  /// Has a validator look at each attempt's end before all others.
  void insertValidatorAtFront(std::shared_ptr<HTTPValidator> validator);

  /// What requests with a path are joined to.
  [[nodiscard]] const std::optional<URL>& baseURL() const noexcept { return baseURL_; }

  /// Sends the request and yields how it ended; `HTTPResponse::error` holds a failure. Resumes on the caller's
  /// executor.
  ///
  /// Lifetime: everything is taken by value, and the call keeps the client alive once it was awaited.
  ///
  /// Cancellation of any type ends the transfer or the wait at once with `boost::system::system_error` of
  /// `operation_aborted`, also when the server may already have acted on the request.
  ///
  /// A request that cannot be sent (no valid URL, not https, credentials in the URL, a header that holds CR, LF or NUL,
  /// a variable that climbs the path) ends with an error of kind `invalidRequest` and reaches neither delegate nor
  /// validators. So does one with an Authorization header to another origin than the base URL's.
  /// \throws boost::system::system_error after a cancellation; what a validator or a function of `HTTPProgress` throws.
  boost::asio::awaitable<HTTPResponse> fetch(HTTPRequest request);

 private:
  std::shared_ptr<Transport> transport_;
  std::optional<URL> baseURL_;
  std::shared_ptr<Clock> clock_;
};

}  // namespace ZAK
