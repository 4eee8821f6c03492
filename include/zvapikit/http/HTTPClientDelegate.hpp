#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/http/HTTPRequest.hpp>
#include <zvapikit/http/HTTPResponse.hpp>
#include <zvapikit/json/URL.hpp>

#include <chrono>
#include <cstdint>

namespace ZAK {

/// The network side of one call: what is really asked, and a number to tell calls apart.
///
/// Thread safety: as a standard container.
class ZVAPIKIT_API HTTPTransfer {
 public:
  /// The call of this number, to this URL.
  HTTPTransfer(std::uint64_t identifier, URL url) : identifier_(identifier), url_(std::move(url)) {}

  /// Different for every call of the process.
  [[nodiscard]] std::uint64_t identifier() const noexcept { return identifier_; }
  /// The whole URL, base and query included. A signed URL is a secret.
  [[nodiscard]] const URL& url() const noexcept { return url_; }

 private:
  std::uint64_t identifier_;
  URL url_;
};

/// Told of what an `HTTPClient` does. The requests hold the Authorization header: do not log them whole.
///
/// Thread safety: called from any thread that runs the client's executor, for several calls at once. Must not block.
/// An exception is swallowed.
class ZVAPIKIT_API HTTPClientDelegate {
 public:
  virtual ~HTTPClientDelegate() = default;

  /// Once a call, before its first attempt.
  virtual void didEnqueue(const HTTPRequest& request, const HTTPTransfer& transfer) = 0;
  /// Before the wait that precedes a retry, after the strategy's task; `retry` counts from 1.
  virtual void willRetry(const HTTPRequest& request, int retry, std::chrono::milliseconds delay) = 0;
  /// A redirect was followed.
  virtual void didRedirect(const HTTPRequest& request, const URL& destination) = 0;
  /// The server answered with a WWW-Authenticate challenge.
  virtual void didReceiveAuthenticationChallenge(const HTTPRequest& request, const HTTPResponse& response) = 0;
  /// The transfer cannot start for want of a connection. For transports that notice it; libcurl's does not tell, so the
  /// kit's own never calls this.
  virtual void isWaitingForConnectivity(const HTTPRequest& request) = 0;
  /// Once an attempt.
  virtual void didCollectMetrics(const HTTPRequest& request, const HTTPMetrics& metrics) = 0;
  /// Once a call, after its last attempt; not for one that was cancelled or ended by an exception.
  virtual void didFinish(const HTTPRequest& request, const HTTPResponse& response) = 0;
};

}  // namespace ZAK
