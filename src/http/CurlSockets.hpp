#pragma once

#include "http/ContextStrand.hpp"

#include <boost/asio/posix/basic_stream_descriptor.hpp>
#include <curl/curl.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <sys/epoll.h>
#include <unordered_map>
#include <utility>

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

  /// To be told of every socket that is opened for libcurl: what it wants to know of an earlier one of that number it
  /// takes for granted with the new one.
  void opened(curl_socket_t number);
  /// Ends for good the idle connections on which something came that nobody asked for, so that libcurl opens others:
  /// the server has closed them. libcurl itself takes the farewell of TLS for a sign of life.
  void dropClosedByServer();
  /// Changes what libcurl wants to know of a socket, in CURL_POLL_ values. False when the kernel refuses.
  [[nodiscard]] bool watch(curl_socket_t number, int what);
  /// True once after a socket was given up that never got connected.
  [[nodiscard]] bool takeFailedAttempt() noexcept { return std::exchange(failedAttempt_, false); }
  /// Waits, if it does not already; `ready` ends the wait.
  void wait();
  /// Ends the wait, so that idle connections do not keep the context running.
  void pause();

 private:
  bool control(int operation, curl_socket_t number, std::uint32_t events);

  boost::asio::posix::basic_stream_descriptor<ContextStrand::Executor> set_;
  std::weak_ptr<void> owner_;
  Ready ready_;
  /// The inode of each socket opened: its number may be somebody else's by now.
  std::unordered_map<curl_socket_t, std::uint64_t> opened_;
  /// Epoll's events by socket.
  std::unordered_map<curl_socket_t, std::uint32_t> wanted_;
  bool waiting_ = false;
  bool failedAttempt_ = false;
};

}  // namespace ZAK
