#include "http/CurlSockets.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <sys/socket.h>
#include <sys/stat.h>
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

/// Tells a socket from another that got its number later; 0 when there is none. As a bare call of the kernel, since
/// ThreadSanitizer would take a look at a number that is somebody else's by now for a race.
std::uint64_t identity(curl_socket_t number) {
  struct stat status {};
  return ::syscall(SYS_fstat, number, &status) == 0 && S_ISSOCK(status.st_mode) ? status.st_ino : 0;
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
  opened_[number] = identity(number);
  if (const auto found = wanted_.find(number); found != wanted_.end()) control(EPOLL_CTL_ADD, number, found->second);
}

void CurlSockets::dropClosedByServer() {
  std::erase_if(opened_, [](const auto& socket) { return identity(socket.first) != socket.second; });
  for (const auto& [number, inode] : opened_) {
    if (wanted_.contains(number)) continue;  // in use
    std::array<char, 4096> ignored;
    const auto receive = [&, socket = number] { return ::recv(socket, ignored.data(), ignored.size(), MSG_DONTWAIT); };
    if (::recv(number, ignored.data(), 1, MSG_PEEK | MSG_DONTWAIT) < 0) continue;
    while (receive() > 0) {  // what is left unread would still look like life
    }
    ::shutdown(number, SHUT_RDWR);
  }
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
