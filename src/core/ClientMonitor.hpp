#pragma once

#include <zvapikit/core/DelegateReference.hpp>
#include <zvapikit/core/MonitorDelegate.hpp>

namespace ZAK {

/// Passes an HTTP client's notifications on to the host's monitor, as long as that lives.
class ClientMonitor final : public HTTPClientDelegate {
 public:
  explicit ClientMonitor(DelegateReference<MonitorDelegate> delegate) : delegate_(std::move(delegate)) {}

  void didEnqueue(const HTTPRequest& request, const HTTPTransfer& transfer) override;
  void willRetry(const HTTPRequest&, int, std::chrono::milliseconds) override {}
  void didRedirect(const HTTPRequest&, const URL&) override {}
  void didReceiveAuthenticationChallenge(const HTTPRequest&, const HTTPResponse&) override {}
  void isWaitingForConnectivity(const HTTPRequest&) override {}
  void didCollectMetrics(const HTTPRequest& request, const HTTPMetrics& metrics) override;
  void didFinish(const HTTPRequest& request, const HTTPResponse& response) override;

 private:
  DelegateReference<MonitorDelegate> delegate_;
};

}  // namespace ZAK
