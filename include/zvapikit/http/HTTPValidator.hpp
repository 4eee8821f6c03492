#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/http/HTTPRequest.hpp>
#include <zvapikit/http/HTTPResponse.hpp>
#include <zvapikit/http/HTTPRetryStrategy.hpp>

#include <exception>
#include <memory>
#include <variant>

namespace ZAK {

/// What a validator decided about an answer.
///
/// Thread safety: as a standard container.
class HTTPValidatorResult {
 public:
  /// The next validator is to decide.
  struct Next {};
  /// The call fails.
  struct Fail {
    std::shared_ptr<const std::exception> error;  ///< why
  };

  /// Hand the response on to the next validator.
  static HTTPValidatorResult next() { return HTTPValidatorResult(Next{}); }
  /// End the chain: the call fails with an `HTTPError` whose underlying error is this one, or with this one itself when
  /// it is an `HTTPError`.
  static HTTPValidatorResult fail(std::shared_ptr<const std::exception> error) {
    return HTTPValidatorResult(Fail{std::move(error)});
  }
  /// End the chain and send the request again; counts as `next()` once the request's retries are used up.
  static HTTPValidatorResult retry(HTTPRetryStrategy strategy) { return HTTPValidatorResult(std::move(strategy)); }

  /// Null unless the call fails.
  [[nodiscard]] const Fail* failure() const noexcept { return std::get_if<Fail>(&value_); }
  /// Null unless the request is to be sent again.
  [[nodiscard]] const HTTPRetryStrategy* retryStrategy() const noexcept {
    return std::get_if<HTTPRetryStrategy>(&value_);
  }

 private:
  template <class T>
  explicit HTTPValidatorResult(T value) : value_(std::move(value)) {}

  std::variant<Next, Fail, HTTPRetryStrategy> value_;
};

/// Looks at each attempt's end and decides how the call goes on. Validators of a client run in their order.
///
/// Thread safety: called from any thread that runs the client's executor, for several calls at once.
class ZVAPIKIT_API HTTPValidator {
 public:
  virtual ~HTTPValidator() = default;
  /// Judges one attempt. `response.error` is set when it failed or its status is outside 2xx. Must not block. An
  /// exception ends the call as it is. Not called for an attempt that was cancelled.
  virtual HTTPValidatorResult validate(const HTTPResponse& response, const HTTPRequest& request) = 0;
};

}  // namespace ZAK
