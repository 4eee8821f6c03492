#include "core/ClientMonitor.hpp"

namespace ZAK {

void ClientMonitor::didEnqueue(const HTTPRequest& request, const HTTPTransfer& transfer) {
  if (const auto delegate = delegate_.lock()) delegate->didEnqueue(request, transfer);
}

void ClientMonitor::didCollectMetrics(const HTTPRequest& request, const HTTPMetrics& metrics) {
  if (const auto delegate = delegate_.lock()) delegate->didCollectMetrics(request, metrics);
}

void ClientMonitor::didFinish(const HTTPRequest& request, const HTTPResponse& response) {
  const auto delegate = delegate_.lock();
  if (!delegate) return;
  std::optional<std::string_view> body;
  if (!response.body.empty()) body = response.body;
  try {
    delegate->didReceive(request, body);
  } catch (...) {  // the end of the call is told all the same
  }
  delegate->didComplete(request, response.error ? &*response.error : nullptr);
}

}  // namespace ZAK
