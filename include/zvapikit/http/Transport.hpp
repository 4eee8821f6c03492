#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/http/HTTPBody.hpp>
#include <zvapikit/http/HTTPHeaders.hpp>
#include <zvapikit/http/HTTPMethod.hpp>
#include <zvapikit/http/HTTPProgress.hpp>
#include <zvapikit/http/HTTPResponse.hpp>
#include <zvapikit/json/URL.hpp>

#include <boost/asio/awaitable.hpp>

#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ZAK {

/// One attempt, exactly as it goes out.
///
/// Thread safety: as a standard container.
struct TransferRequest {
  /// How it is asked.
  HTTPMethod method = HTTPMethod::get;
  /// Absolute, https, with its query.
  std::string url;
  /// All headers but those of the connection itself (Host, Content-Length, ...).
  HTTPHeaders headers;
  /// What is sent; perhaps nothing.
  HTTPBody body;
  /// Longest time without progress; absent means the transport's default.
  std::optional<std::chrono::milliseconds> timeout;
  /// How many redirects are followed.
  int maxRedirects = 0;
  /// As in `HTTPRequest`.
  std::optional<std::filesystem::path> destination{};
  /// As in `HTTPProgress`, for this attempt.
  HTTPProgress progress;

  /// True when the body of an answer with that status goes to the destination.
  [[nodiscard]] bool yieldsFile(HTTPStatusCode status) const noexcept {
    const bool isEmpty = method == HTTPMethod::head || status.code() == 204 || status.code() == 205;
    return destination && status.isSuccess() && !isEmpty;
  }
};

/// How one attempt ended.
///
/// Thread safety: as a standard container.
struct TransferResult {
  /// Holds no error for an answer of any status: judging it is the client's business. Holds one (and perhaps a status
  /// and part of a body) when the transfer itself failed.
  HTTPResponse response;
  /// True once the first line of an answer has come: the server has acted on the request.
  bool answerStarted = false;
  /// Destinations of the redirects that were followed, in order.
  std::vector<URL> redirects;
};

/// Carries one request to a server and its answer back. `CurlTransport` is the real one; `ScriptedTransport` serves
/// tests without a network.
///
/// Thread safety: any number of calls at once, from any thread.
class ZVAPIKIT_API Transport {
 public:
  virtual ~Transport() = default;

  /// Makes one attempt, and never a second. Resumes on the caller's executor. Failures of the transfer are in the
  /// result. Cancellation of any type ends the transfer at once. The awaitable keeps the transport alive.
  /// \throws boost::system::system_error of `operation_aborted` after a cancellation; what a function of the request's
  ///   progress throws.
  virtual boost::asio::awaitable<TransferResult> perform(TransferRequest request) = 0;
};

}  // namespace ZAK
