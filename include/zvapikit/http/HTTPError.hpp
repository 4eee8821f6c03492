#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/http/HTTPStatusCode.hpp>

#include <exception>
#include <memory>
#include <string>

namespace ZAK {

/// Why an exchange failed below the level of the API. Carries no header and no body, so that it can be logged.
///
/// A cancelled call does not fail with this but with `boost::system::system_error` of `operation_aborted`.
///
/// Thread safety: immutable; copies share the text.
class ZVAPIKIT_API HTTPError : public std::exception {
 public:
  /// What went wrong.
  enum class Kind {
    status,                  ///< an answer came, with a status outside 2xx
    rejected,                ///< a validator refused the answer; `underlyingError()` says why
    invalidRequest,          ///< nothing was sent: the URL, a header or the body cannot be
    cannotFindHost,          ///< the name did not resolve
    cannotConnect,           ///< no connection: refused, unreachable, or not up within the connect time-out
    secureConnectionFailed,  ///< TLS could not be agreed, or the certificate, its name or its chain is not trusted
    timedOut,                ///< no progress within the request's time-out
    connectionLost,          ///< the connection ended before the answer was whole
    invalidAnswer,           ///< what came is no HTTP answer, or its encoding is broken
    answerTooLarge,          ///< the body is longer than `TransportOptions::maximumBodySize`, or the headers are absurd
    tooManyRedirects,        ///< more redirects than the request follows
    fileSystem,              ///< a file to send could not be read, or one to be downloaded not be written;
                             ///< `underlyingError()` is a `std::filesystem::filesystem_error`
    emptyResponse,           ///< a record was to be decoded and the answer had no byte
    other                    ///< anything else; see `transportCode()`
  };

  /// A failure without an answer (`status` is 0) or after one. `transportCode` is libcurl's, 0 when it had none.
  HTTPError(Kind kind, HTTPStatusCode status, std::string message, int transportCode = 0,
            std::shared_ptr<const std::exception> underlyingError = nullptr);
  /// The error of an answer whose status is outside 2xx.
  static HTTPError unsuccessful(HTTPStatusCode status);
  /// The error of decoding a record from an answer without a byte.
  static HTTPError emptyResponse(HTTPStatusCode status);

  /// What went wrong.
  [[nodiscard]] Kind kind() const noexcept { return state_->kind; }
  /// The answer's status; 0 when no answer came.
  [[nodiscard]] HTTPStatusCode statusCode() const noexcept { return state_->status; }
  /// For people: `HTTP 404 Not Found`, `connection refused: mobile.zolvi.example`, ... Of the URL it names the host,
  /// and a port that is not the usual one, at most.
  [[nodiscard]] const std::string& description() const noexcept { return state_->message; }
  /// What a validator found, for example an `ErrorDto`, or what the file system said; null when there is none.
  [[nodiscard]] const std::shared_ptr<const std::exception>& underlyingError() const noexcept {
    return state_->underlying;
  }
  /// libcurl's result code, for a bug report; 0 when the transfer itself succeeded.
  [[nodiscard]] int transportCode() const noexcept { return state_->transportCode; }
  /// Same text as `description()`.
  [[nodiscard]] const char* what() const noexcept override { return state_->message.c_str(); }

 private:
  struct State {
    Kind kind;
    HTTPStatusCode status;
    std::string message;
    int transportCode;
    std::shared_ptr<const std::exception> underlying;
  };
  std::shared_ptr<const State> state_;
};

}  // namespace ZAK
