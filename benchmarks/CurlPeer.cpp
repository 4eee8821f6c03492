#include "CurlPeer.hpp"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <sys/epoll.h>
#include <unistd.h>

namespace Bench {

CurlPeer::CurlPeer(std::string url, const std::string& connectTo, std::string caFile, long connections,
                   const std::vector<std::string>& headers, Answered answered)
    : url_(std::move(url)),
      caFile_(std::move(caFile)),
      connectTo_(curl_slist_append(nullptr, connectTo.c_str())),
      answered_(std::move(answered)),
      multi_((curl_global_init(CURL_GLOBAL_DEFAULT), curl_multi_init())),
      epoll_(epoll_create1(EPOLL_CLOEXEC)) {
  for (const std::string& header : headers) headers_ = curl_slist_append(headers_, header.c_str());
  for (const char* header : {"Accept:", "Expect:", "Content-Type:"}) headers_ = curl_slist_append(headers_, header);
  curl_multi_setopt(multi_, CURLMOPT_SOCKETFUNCTION, &CurlPeer::onSocket);
  curl_multi_setopt(multi_, CURLMOPT_SOCKETDATA, this);
  curl_multi_setopt(multi_, CURLMOPT_TIMERFUNCTION, &CurlPeer::onTimer);
  curl_multi_setopt(multi_, CURLMOPT_TIMERDATA, this);
  curl_multi_setopt(multi_, CURLMOPT_PIPELINING, static_cast<long>(CURLPIPE_MULTIPLEX));
  curl_multi_setopt(multi_, CURLMOPT_MAX_HOST_CONNECTIONS, connections);
  curl_multi_setopt(multi_, CURLMOPT_MAXCONNECTS, 4 * connections);
  curl_multi_setopt(multi_, CURLMOPT_MAX_CONCURRENT_STREAMS, 1000L);
}

CurlPeer::~CurlPeer() {
  for (const auto& transfer : transfers_) curl_easy_cleanup(transfer->easy);
  curl_multi_cleanup(multi_);
  curl_slist_free_all(headers_);
  curl_slist_free_all(connectTo_);
  close(epoll_);
}

void CurlPeer::configure(Transfer& transfer) {
  const auto set = [easy = transfer.easy](CURLoption option, auto value) { curl_easy_setopt(easy, option, value); };
  set(CURLOPT_PRIVATE, &transfer);
  set(CURLOPT_URL, url_.c_str());
  set(CURLOPT_CONNECT_TO, connectTo_);
  set(CURLOPT_HTTPHEADER, headers_);
  set(CURLOPT_CAINFO, caFile_.c_str());
  set(CURLOPT_CAPATH, static_cast<const char*>(nullptr));
  set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
  set(CURLOPT_PROTOCOLS_STR, "https");
  set(CURLOPT_PROXY, "");
  set(CURLOPT_NOPROXY, "");
  set(CURLOPT_NETRC, static_cast<long>(CURL_NETRC_IGNORED));
  set(CURLOPT_ACCEPT_ENCODING, "");
  set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_2TLS));
  set(CURLOPT_PIPEWAIT, 1L);
  set(CURLOPT_PATH_AS_IS, 1L);
  set(CURLOPT_NOSIGNAL, 1L);
  set(CURLOPT_LOW_SPEED_LIMIT, 1L);
  set(CURLOPT_LOW_SPEED_TIME, 60L);
  set(CURLOPT_CONNECTTIMEOUT_MS, 15000L);
  set(CURLOPT_HEADERFUNCTION, &CurlPeer::onHeader);
  set(CURLOPT_HEADERDATA, &transfer);
  set(CURLOPT_WRITEFUNCTION, &CurlPeer::onBody);
  set(CURLOPT_WRITEDATA, &transfer);
}

void CurlPeer::start(Transfer& transfer) {
  curl_easy_reset(transfer.easy);
  transfer.body.clear();
  configure(transfer);
  curl_multi_add_handle(multi_, transfer.easy);
  --left_;
  ++running_;
}

void CurlPeer::run(std::size_t calls, std::size_t inFlight) {
  left_ = calls;
  while (transfers_.size() < inFlight) {
    transfers_.push_back(std::make_unique<Transfer>());
    transfers_.back()->easy = curl_easy_init();
  }
  for (std::size_t i = 0; i < inFlight && left_ > 0; ++i) start(*transfers_[i]);
  std::array<epoll_event, 64> events;
  while (running_ > 0) {
    const int ready = timeout_ == 0 ? 0 : epoll_wait(epoll_, events.data(), events.size(), static_cast<int>(timeout_));
    for (int i = 0; i < ready; ++i) {
      const epoll_event& event = events[static_cast<std::size_t>(i)];
      drive(event.data.fd, ((event.events & EPOLLIN) ? CURL_CSELECT_IN : 0) |
                               ((event.events & EPOLLOUT) ? CURL_CSELECT_OUT : 0) |
                               ((event.events & (EPOLLERR | EPOLLHUP)) ? CURL_CSELECT_ERR : 0));
    }
    if (ready <= 0) {
      timeout_ = -1;
      drive(CURL_SOCKET_TIMEOUT, 0);
    }
    reap();
  }
}

void CurlPeer::drive(int socket, int events) {
  int running = 0;
  curl_multi_socket_action(multi_, socket, events, &running);
}

void CurlPeer::reap() {
  int queued = 0;
  while (const CURLMsg* message = curl_multi_info_read(multi_, &queued)) {
    CURL* easy = message->easy_handle;
    const CURLcode code = message->data.result;
    curl_multi_remove_handle(multi_, easy);
    --running_;
    long status = 0;
    void* transfer = nullptr;
    curl_easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &status);
    curl_easy_getinfo(easy, CURLINFO_PRIVATE, &transfer);
    if (code != CURLE_OK || status != 200) {
      std::fprintf(stderr, "curl: %s, status %ld\n", curl_easy_strerror(code), status);
      std::exit(1);
    }
    answered_(static_cast<Transfer*>(transfer)->body);
    if (left_ > 0) start(*static_cast<Transfer*>(transfer));
  }
}

int CurlPeer::onSocket(CURL*, curl_socket_t number, int what, void* peer, void* known) noexcept {
  const CurlPeer& self = *static_cast<CurlPeer*>(peer);
  if (what == CURL_POLL_REMOVE) return epoll_ctl(self.epoll_, EPOLL_CTL_DEL, number, nullptr), 0;
  epoll_event event{};
  event.data.fd = number;
  event.events = ((what & CURL_POLL_IN) ? EPOLLIN : 0u) | ((what & CURL_POLL_OUT) ? EPOLLOUT : 0u);
  epoll_ctl(self.epoll_, known ? EPOLL_CTL_MOD : EPOLL_CTL_ADD, number, &event);
  if (!known) curl_multi_assign(self.multi_, number, peer);
  return 0;
}

int CurlPeer::onTimer(CURLM*, long milliseconds, void* peer) noexcept {
  static_cast<CurlPeer*>(peer)->timeout_ = milliseconds;
  return 0;
}

std::size_t CurlPeer::onHeader(char*, std::size_t size, std::size_t count, void*) noexcept { return size * count; }

std::size_t CurlPeer::onBody(char* data, std::size_t size, std::size_t count, void* transfer) noexcept {
  static_cast<Transfer*>(transfer)->body.append(data, size * count);
  return size * count;
}

}  // namespace Bench
