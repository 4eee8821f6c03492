#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/http/Transport.hpp>
#include <zvapikit/http/TransportOptions.hpp>

#include <boost/asio/any_io_executor.hpp>

#include <memory>

namespace ZAK {

/// The transport to real servers: HTTP/2, or HTTP/1.1 where a server has no more, over TLS of at least version 1.2.
///
/// One object holds one pool of connections, one cache of names and one of TLS sessions: share it between clients.
///
/// Executor: transfers are driven on a strand of the given executor and resume their callers on the callers' own. A
/// context's `run()` returns when no transfer is left; kept-alive connections do not hold it, and are used again when
/// it runs again.
///
/// Lifetime: transfers in flight keep what they need, so dropping the transport lets them finish. When the execution
/// context ends they end without resuming their callers. The transport may outlive the context; a transfer started then
/// fails with `operation_aborted`.
///
/// Time-outs: the longest time without progress is counted in whole seconds, rounded up, over a window of a few
/// seconds; connecting, TLS included, takes no longer than the shorter of it and `TransportOptions::connectTimeout`.
///
/// Redirects: followed for GET and HEAD only and to https only; for any other method, and when `maxRedirects` is 0, a
/// 3xx is an answer. A redirect to another scheme, host or port carries none of the request's headers, and nor does
/// what follows it.
///
/// Thread safety: any number of transfers at once, from any thread.
class ZVAPIKIT_API CurlTransport {
 public:
  /// A transport of its own. Nothing is connected yet.
  /// \throws std::invalid_argument when the executor is empty.
  [[nodiscard]] static std::shared_ptr<Transport> create(boost::asio::any_io_executor executor,
                                                         TransportOptions options = {});
};

}  // namespace ZAK
