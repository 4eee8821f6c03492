#include "http/CurlSockets.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <sys/syscall.h>
#include <system_error>
#include <unistd.h>

namespace ZAK {
namespace {

int createSet() {
  const int number = ::epoll_create1(EPOLL_CLOEXEC);
  if (number < 0) throw std::system_error(errno, std::generic_category(), "epoll_create1");
  return number;
}

}  // namespace

CurlSockets::CurlSockets(const ContextStrand::Executor& executor, std::weak_ptr<void> owner, Ready ready)
    : set_(executor, createSet()), owner_(std::move(owner)), ready_(std::move(ready)) {}

bool CurlSockets::control(int operation, curl_socket_t number, std::uint32_t events) {
  epoll_event event{};
  event.events = events;
  event.data.fd = number;
  return ::epoll_ctl(set_.native_handle(), operation, number, &event) == 0;
}

void CurlSockets::opened(curl_socket_t number) {
  if (const auto found = wanted_.find(number); found != wanted_.end()) control(EPOLL_CTL_ADD, number, found->second);
}

bool CurlSockets::watch(curl_socket_t number, int what) {
  if (what == CURL_POLL_REMOVE) {
    const auto node = wanted_.extract(number);
    // Writing alone is waited for only until the connection stands.
    if (node && node.mapped() == EPOLLOUT) failedAttempt_ = true;
    // The socket may have been closed and its number be somebody else's: not in this set, so that nothing happens, but
    // ThreadSanitizer would take the library's function for a race with whoever opened that.
    ::syscall(SYS_epoll_ctl, set_.native_handle(), EPOLL_CTL_DEL, number, nullptr);
    return true;
  }
  std::uint32_t events = 0;
  if ((what & CURL_POLL_IN) != 0) events |= EPOLLIN;
  if ((what & CURL_POLL_OUT) != 0) events |= EPOLLOUT;
  const bool known = !wanted_.insert_or_assign(number, events).second;
  return control(known ? EPOLL_CTL_MOD : EPOLL_CTL_ADD, number, events) ||
         control(known ? EPOLL_CTL_ADD : EPOLL_CTL_MOD, number, events);
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
