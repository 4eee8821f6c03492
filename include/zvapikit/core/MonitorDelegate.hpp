#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/http/HTTPClientDelegate.hpp>

#include <optional>
#include <string_view>

namespace ZAK {

/// Watches the kit's traffic, on both of its servers and on clients of `MobileApiClient::buildRaw()`. When a request
/// has finished, `didReceive` is called before `didComplete`.
///
/// One call hands the same `HTTPRequest` object to each operation, so that its address tells calls under way apart. It
/// holds the kit's token, if any, but not the headers that all requests have in common.
///
/// Requests, URLs and bodies may hold tokens: do not log them whole.
///
/// Thread safety: called from any thread that runs the client's executor or that of a call, for several calls at once.
/// Must not block. What it throws is swallowed.
class ZVAPIKIT_API MonitorDelegate {
 public:
  virtual ~MonitorDelegate() = default;

  /// A call begins: once, before its first attempt.
  virtual void didEnqueue(const HTTPRequest& request, const HTTPTransfer& transfer) = 0;
  /// An attempt has ended: once for each, whatever came of it.
  virtual void didCollectMetrics(const HTTPRequest& request, const HTTPMetrics& metrics) = 0;
  /// A call has ended: once; `error` is null when it succeeded. A cancelled call is not reported.
  virtual void didComplete(const HTTPRequest& request, const HTTPError* error) = 0;
  /// The answer of a call, just before `didComplete`; `body` is absent when no answer came or it had no body.
  virtual void didReceive(const HTTPRequest& request, std::optional<std::string_view> body) = 0;
};

}  // namespace ZAK
