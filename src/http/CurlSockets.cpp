#include "http/CurlSockets.hpp"

#include <boost/asio/error.hpp>

#include <utility>

namespace ZAK {

struct CurlSockets::Socket {
  Socket(const ContextStrand::Executor& executor, curl_socket_t number_) : descriptor(executor), number(number_) {}

  boost::asio::posix::basic_stream_descriptor<ContextStrand::Executor> descriptor;
  curl_socket_t number;
  /// What libcurl wants and what is being waited for, in CURL_POLL_ bits. A wait that is no longer wanted is left
  /// alone: most often it is wanted again soon.
  int wanted = 0;
  int pending = 0;
  bool announced = false;
  bool gone = false;
};

CurlSockets::CurlSockets(ContextStrand::Executor executor, std::weak_ptr<void> owner, Ready ready)
    : executor_(std::move(executor)), owner_(std::move(owner)), ready_(std::move(ready)) {}

CurlSockets::~CurlSockets() {
  while (!sockets_.empty()) closing(sockets_.begin()->first);
}

std::shared_ptr<CurlSockets::Socket> CurlSockets::add(curl_socket_t number) {
  auto socket = std::make_shared<Socket>(executor_, number);
  boost::system::error_code error;
  socket->descriptor.assign(number, error);
  if (error) return nullptr;
  sockets_[number] = socket;
  return socket;
}

bool CurlSockets::opened(curl_socket_t number) {
  const auto socket = add(number);
  if (socket) socket->announced = true;
  return socket != nullptr;
}

void CurlSockets::closing(curl_socket_t number) {
  const auto node = sockets_.extract(number);
  if (!node) return;
  auto& socket = *node.mapped();
  socket.gone = true;
  socket.descriptor.release();
}

bool CurlSockets::watch(curl_socket_t number, int what) {
  const auto found = sockets_.find(number);
  auto socket = found == sockets_.end() ? nullptr : found->second;
  if (what == CURL_POLL_REMOVE) {
    if (socket && socket->announced) {
      socket->wanted = 0;
    } else {
      closing(number);
    }
    return true;
  }
  if (!socket) socket = add(number);
  if (!socket) return false;
  socket->wanted = what & CURL_POLL_INOUT;
  arm(socket, CURL_POLL_IN);
  arm(socket, CURL_POLL_OUT);
  return true;
}

void CurlSockets::pause() {
  for (const auto& [number, socket] : sockets_) {
    if (socket->pending != 0) socket->descriptor.cancel();
  }
}

void CurlSockets::arm(const std::shared_ptr<Socket>& socket, int direction) {
  if ((socket->wanted & direction) == 0 || (socket->pending & direction) != 0) return;
  socket->pending |= direction;
  const bool reads = direction == CURL_POLL_IN;
  using Descriptor = decltype(Socket::descriptor);
  socket->descriptor.async_wait(
      reads ? Descriptor::wait_read : Descriptor::wait_write,
      [this, owner = owner_, socket, direction, reads](boost::system::error_code error) {
        socket->pending &= ~direction;
        const auto alive = owner.lock();
        if (!alive || socket->gone || (socket->wanted & direction) == 0) return;
        // An ended wait may have been wanted again by now, and is then only started anew.
        if (error != boost::asio::error::operation_aborted) {
          ready_(socket->number, error ? CURL_CSELECT_ERR : reads ? CURL_CSELECT_IN : CURL_CSELECT_OUT);
        }
        if (!socket->gone) arm(socket, direction);
      });
}

}  // namespace ZAK
