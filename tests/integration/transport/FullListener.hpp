#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <string>
#include <sys/socket.h>
#include <unistd.h>

namespace ZAK::test {

/// A loopback port whose queue of connections is full: connecting to it hangs.
class FullListener {
 public:
  explicit FullListener(const char* host = "127.0.0.1", int port = 0) {
    address_.sin_family = AF_INET;
    address_.sin_port = htons(static_cast<std::uint16_t>(port));
    ::inet_pton(AF_INET, host, &address_.sin_addr);
    socklen_t length = sizeof(address_);
    ::bind(listener_, generic(), length);
    ::listen(listener_, 0);
    ::getsockname(listener_, generic(), &length);
    for (int& filler : fillers_) {
      filler = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
      ::connect(filler, generic(), length);
    }
  }
  ~FullListener() {
    close();
    for (const int filler : fillers_) ::close(filler);
  }
  FullListener(const FullListener&) = delete;
  FullListener& operator=(const FullListener&) = delete;

  /// Lets what hangs be refused.
  void close() {
    if (listener_ >= 0) ::close(listener_);
    listener_ = -1;
  }
  [[nodiscard]] std::string url() const {
    return "https://localhost:" + std::to_string(ntohs(address_.sin_port)) + '/';
  }

 private:
  sockaddr* generic() { return reinterpret_cast<sockaddr*>(&address_); }

  sockaddr_in address_{};
  int listener_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  int fillers_[4]{};
};

}  // namespace ZAK::test
