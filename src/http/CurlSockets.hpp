#pragma once

#include "http/ContextStrand.hpp"

#include <boost/asio/posix/basic_stream_descriptor.hpp>
#include <curl/curl.h>

#include <functional>
#include <memory>
#include <unordered_map>

namespace ZAK {

/// The sockets of a multi handle, watched by the execution context's reactor. A socket stays registered from its
/// opening to its closing; only the waits come and go.
///
/// Thread safety: none, it belongs to one strand.
class CurlSockets {
 public:
  /// Told, on the strand, of a socket and of what it is ready for, in CURL_CSELECT_ bits.
  using Ready = std::function<void(curl_socket_t, int)>;

  /// `ready` is called only while `owner` lives, which must hold this object.
  CurlSockets(ContextStrand::Executor executor, std::weak_ptr<void> owner, Ready ready);
  ~CurlSockets();
  CurlSockets(const CurlSockets&) = delete;
  CurlSockets& operator=(const CurlSockets&) = delete;

  /// Registers a socket that will be told of by `closing`. False when the reactor cannot take it.
  [[nodiscard]] bool opened(curl_socket_t number);
  /// Forgets the socket; to be called before it is closed, since its number may then come again.
  void closing(curl_socket_t number);
  /// Waits for what libcurl wants, in CURL_POLL_ values. Also takes sockets that were never told of by `opened`: those
  /// are forgotten as soon as nothing is wanted of them. False when the reactor cannot take the socket.
  [[nodiscard]] bool watch(curl_socket_t number, int what);
  /// Ends all waits, so that idle connections do not keep the context running. Wanting something starts them again.
  void pause();

 private:
  struct Socket;
  std::shared_ptr<Socket> add(curl_socket_t number);
  void arm(const std::shared_ptr<Socket>& socket, int direction);

  ContextStrand::Executor executor_;
  std::weak_ptr<void> owner_;
  Ready ready_;
  std::unordered_map<curl_socket_t, std::shared_ptr<Socket>> sockets_;
};

}  // namespace ZAK
