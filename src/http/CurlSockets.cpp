#include "http/CurlSockets.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <system_error>
#include <utility>

namespace ZAK {
namespace {

int createSet() {
  const int number = ::epoll_create1(EPOLL_CLOEXEC);
  if (number < 0) throw std::system_error(errno, std::generic_category(), "epoll_create1");
  return number;
}

/// The port of one end of a connection, as `getsockname` or `getpeername` tells it; 0 for what is no such thing.
int portOf(int number, int (*name)(int, sockaddr*, socklen_t*) noexcept) noexcept {
  sockaddr_storage address{};
  socklen_t length = sizeof(address);
  if (name(number, reinterpret_cast<sockaddr*>(&address), &length) != 0) return 0;
  if (address.ss_family == AF_INET) return ntohs(reinterpret_cast<const sockaddr_in&>(address).sin_port);
  return address.ss_family == AF_INET6 ? ntohs(reinterpret_cast<const sockaddr_in6&>(address).sin6_port) : 0;
}

}  // namespace

CurlSockets::CurlSockets(const ContextStrand::Executor& executor, std::weak_ptr<void> owner, Ready ready)
    : set_(executor, createSet()), owner_(std::move(owner)), ready_(std::move(ready)) {}

bool CurlSockets::watch(curl_socket_t number, int what, bool known) {
  epoll_event event{};
  event.data.fd = number;
  if ((what & CURL_POLL_IN) != 0) event.events |= EPOLLIN;
  if ((what & CURL_POLL_OUT) != 0) event.events |= EPOLLOUT;
  const auto control = [&](int operation) { return ::epoll_ctl(set_.native_handle(), operation, number, &event) == 0; };
  if (what == CURL_POLL_REMOVE) {
    control(EPOLL_CTL_DEL);  // Fails for a socket that was closed already.
    return true;
  }
  known_.insert(number);
  if (control(known ? EPOLL_CTL_MOD : EPOLL_CTL_ADD)) return true;
  return control(known ? EPOLL_CTL_ADD : EPOLL_CTL_MOD);
}

bool CurlSockets::peerHasClosed(int localPort, int remotePort) const noexcept {
  return std::any_of(known_.begin(), known_.end(), [=](curl_socket_t number) {
    if (portOf(number, ::getsockname) != localPort) return false;
    pollfd connection{number, POLLRDHUP, 0};
    const int peer = portOf(number, ::getpeername);  // none after a reset
    return (peer == remotePort || peer == 0) && ::poll(&connection, 1, 0) > 0;
  });
}

void CurlSockets::wait() {
  if (std::exchange(waiting_, true)) return;
  set_.async_wait(decltype(set_)::wait_read, [this, owner = owner_](boost::system::error_code error) {
    const auto alive = owner.lock();
    if (!alive) return;
    waiting_ = false;
    std::array<epoll_event, 64> events;
    const int count = error ? 0 : ::epoll_wait(set_.native_handle(), events.data(), events.size(), 0);
    ready_(std::span(events.data(), static_cast<std::size_t>(std::max(count, 0))));
  });
}

void CurlSockets::pause() {
  if (waiting_) set_.cancel();
}

}  // namespace ZAK
