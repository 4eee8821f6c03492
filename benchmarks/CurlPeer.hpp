#pragma once

#include <curl/curl.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace Bench {

/// GET requests for one URL by libcurl's multi-socket interface and epoll, with nothing in between: what a transfer
/// costs when no library helps. Handles are pooled and the header list is built once; TLS is verified, and libcurl is
/// told the same as the kit tells it.
class CurlPeer {
 public:
  /// Handed each body; an answer of a status other than 200 ends the program.
  using Answered = std::function<void(const std::string& body)>;

  /// `connectTo` is an entry as CURLOPT_CONNECT_TO takes it.
  CurlPeer(std::string url, const std::string& connectTo, std::string caFile, long connections,
           const std::vector<std::string>& headers, Answered answered);
  ~CurlPeer();
  CurlPeer(const CurlPeer&) = delete;
  CurlPeer& operator=(const CurlPeer&) = delete;

  /// Makes so many calls, no more than `inFlight` at once.
  void run(std::size_t calls, std::size_t inFlight);

 private:
  struct Transfer {
    CURL* easy = nullptr;
    std::string body;
  };

  void configure(Transfer& transfer);
  void start(Transfer& transfer);
  void drive(int socket, int events);
  void reap();

  static int onSocket(CURL* easy, curl_socket_t number, int what, void* peer, void* known) noexcept;
  static int onTimer(CURLM* multi, long milliseconds, void* peer) noexcept;
  static std::size_t onHeader(char* data, std::size_t size, std::size_t count, void* transfer) noexcept;
  static std::size_t onBody(char* data, std::size_t size, std::size_t count, void* transfer) noexcept;

  std::string url_;
  std::string caFile_;
  curl_slist* connectTo_;
  curl_slist* headers_ = nullptr;
  Answered answered_;
  CURLM* multi_;
  int epoll_;
  long timeout_ = -1;
  std::vector<std::unique_ptr<Transfer>> transfers_;
  std::size_t left_ = 0;
  std::size_t running_ = 0;
};

}  // namespace Bench
