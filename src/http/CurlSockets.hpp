#pragma once

#include "http/ContextStrand.hpp"

#include <boost/asio/posix/basic_stream_descriptor.hpp>
#include <curl/curl.h>

#include <functional>
#include <memory>
#include <set>
#include <span>
#include <sys/epoll.h>

namespace ZAK {

/// The sockets of a multi handle, in an epoll set that is the one descriptor which the execution context sees.
///
/// libcurl closes sockets that never got connected without telling, and their numbers come again at once. A set that
/// the kernel keeps forgets them by itself; descriptors registered with the context one by one would wait for the dead,
/// or tear down whoever has the number by then.
///
/// Thread safety: none, it belongs to one strand.
class CurlSockets {
 public:
  /// Told, on the strand, of what has happened; of nothing when a wait was ended by `pause`.
  using Ready = std::function<void(std::span<const epoll_event>)>;

  /// `ready` is called only while `owner` lives, which must hold this object.
  CurlSockets(const ContextStrand::Executor& executor, std::weak_ptr<void> owner, Ready ready);

  /// Changes what libcurl wants to know of a socket, in CURL_POLL_ values; `known` says that it asked before. False
  /// when the kernel refuses.
  [[nodiscard]] bool watch(curl_socket_t number, int what, bool known);
  /// True when the other end of the connection between these ports will send no more. libcurl misses it before it uses
  /// a kept connection again: it takes the farewell of TLS for an answer on its way.
  [[nodiscard]] bool peerHasClosed(int localPort, int remotePort) const noexcept;
  /// Waits, if it does not already; `ready` ends the wait.
  void wait();
  /// Ends the wait, so that idle connections do not keep the context running.
  void pause();

 private:
  boost::asio::posix::basic_stream_descriptor<ContextStrand::Executor> set_;
  std::weak_ptr<void> owner_;
  Ready ready_;
  /// All that were ever watched; some are closed by now, or are the host's.
  std::set<curl_socket_t> known_;
  bool waiting_ = false;
};

}  // namespace ZAK
