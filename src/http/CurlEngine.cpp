#include "http/CurlEngine.hpp"

#include <boost/asio/cancellation_signal.hpp>
#include <boost/asio/dispatch.hpp>
#include <boost/asio/error.hpp>
#include <boost/asio/post.hpp>
#include <boost/system/system_error.hpp>

#include <algorithm>
#include <new>
#include <sys/socket.h>
#include <utility>

namespace ZAK {
namespace {

using Clock_ = std::chrono::steady_clock;

constexpr std::size_t mostIdleHandles = 128;
/// How often in a row, and how long, libcurl may ask to be called again at once before others get their turn. A call
/// may move a megabyte.
constexpr int mostImmediateCalls = 16;
constexpr auto longestTurn = std::chrono::milliseconds(1);

void initialiseLibrary() {
  static const CURLcode code = curl_global_init(CURL_GLOBAL_DEFAULT);
  if (code != CURLE_OK) throw std::bad_alloc();
}

}  // namespace

std::shared_ptr<CurlEngine> CurlEngine::create(const boost::asio::any_io_executor& executor, TransportOptions options) {
  initialiseLibrary();
  auto engine = std::make_shared<CurlEngine>(Private(), ContextStrand::create(executor), std::move(options));
  engine->open();
  bindToContext(executor, engine);
  return engine;
}

CurlEngine::CurlEngine(Private, std::shared_ptr<ContextStrand> strand, TransportOptions options)
    : strand_(std::move(strand)), settings_(std::move(options)) {}

CurlEngine::~CurlEngine() { close(); }

void CurlEngine::contextShutdown() noexcept { close(); }

void CurlEngine::open() {
  io_.emplace(strand_->executor(), weak_from_this(), [this](std::span<const epoll_event> events) { act(events); });
  multi_ = curl_multi_init();
  if (multi_ == nullptr) throw std::bad_alloc();
  const long perHost = std::max(1, settings_.options.connectionsPerHost);
  curl_multi_setopt(multi_, CURLMOPT_SOCKETFUNCTION, &CurlEngine::onSocket);
  curl_multi_setopt(multi_, CURLMOPT_SOCKETDATA, this);
  curl_multi_setopt(multi_, CURLMOPT_TIMERFUNCTION, &CurlEngine::onTimer);
  curl_multi_setopt(multi_, CURLMOPT_TIMERDATA, this);
  curl_multi_setopt(multi_, CURLMOPT_PIPELINING, static_cast<long>(CURLPIPE_MULTIPLEX));
  curl_multi_setopt(multi_, CURLMOPT_MAX_HOST_CONNECTIONS, perHost);
  curl_multi_setopt(multi_, CURLMOPT_MAXCONNECTS, 4 * perHost);
  curl_multi_setopt(multi_, CURLMOPT_MAX_CONCURRENT_STREAMS, 1000L);
}

void CurlEngine::close() noexcept {
  if (multi_ == nullptr) return;
  // Callers that still wait have lost their context: they are destroyed, never resumed. Last, since with them may go
  // what uses this engine.
  const auto orphans = std::exchange(running_, {});
  for (const auto& [easy, running] : orphans) {
    curl_multi_remove_handle(multi_, easy);
    curl_easy_cleanup(easy);
  }
  for (CURL* easy : std::exchange(idle_, {})) curl_easy_cleanup(easy);
  // Closes the connections, which the sockets are told of.
  curl_multi_cleanup(std::exchange(multi_, nullptr));
  io_.reset();
}

boost::asio::awaitable<CurlEngine::Stage> CurlEngine::run(Transfer transfer, TransferCounts told) {
  // The strand is asked for here, since what an initiation throws is lost.
  return suspend<Stage>([executor = strand_->executor(), engine = shared_from_this(), transfer = std::move(transfer),
                         told](std::unique_ptr<Waiter<Stage>> waiter, boost::asio::cancellation_slot slot) {
    if (slot.is_connected()) {
      // The slot may outlive the context, so it must not hold the strand.
      slot.assign(
          [weakEngine = std::weak_ptr(engine), weakTransfer = std::weak_ptr(transfer)](boost::asio::cancellation_type) {
            const auto target = weakTransfer.lock();
            if (const auto alive = weakEngine.lock(); alive && target) alive->abandon(target);
          });
    }
    // The waiter joins the transfer only on the strand: were they joined here, a context that ends in between would
    // leave a ring of references.
    boost::asio::dispatch(executor, [engine, transfer, told, waiter = std::move(waiter)]() mutable {
      engine->attend({std::move(transfer), std::move(waiter), told});
    });
  });
}

void CurlEngine::attend(Running attended) {
  const auto known = running_.find(attended.transfer->easy());
  if (attended.transfer->ended()) {
    attended.waiter->resume({}, {true, attended.transfer->counts()});
  } else if (known == running_.end()) {
    start(std::move(attended));
  } else {
    known->second = std::move(attended);
    tell(known->second);
  }
}

void CurlEngine::start(Running starting) {
  auto& transfer = *starting.transfer;
  // Sent on a connection that the server has closed, such a request would be lost: it must not be sent twice.
  if (!isIdempotent(transfer.request.method)) io_->sockets.dropClosedByServer();
  CURL* easy = takeHandle();
  CURLcode code = easy == nullptr ? CURLE_OUT_OF_MEMORY : transfer.begin(easy, settings_);
  if (code == CURLE_OK) code = curl_easy_setopt(easy, CURLOPT_OPENSOCKETFUNCTION, &CurlEngine::onOpen);
  if (code == CURLE_OK) code = curl_easy_setopt(easy, CURLOPT_OPENSOCKETDATA, this);
  if (code == CURLE_OK && curl_multi_add_handle(multi_, easy) != CURLM_OK) code = CURLE_FAILED_INIT;
  if (code != CURLE_OK) {
    finish(starting, code, {});
    return;
  }
  if (transfer.isWatched()) watched_.insert(easy);
  running_.emplace(easy, std::move(starting));
  pumpSoon();
}

void CurlEngine::abandon(const Transfer& transfer) noexcept {
  try {
    boost::asio::post(strand_->executor(), [weakEngine = weak_from_this(), weakTransfer = std::weak_ptr(transfer)] {
      const auto target = weakTransfer.lock();
      if (const auto alive = weakEngine.lock(); alive && target) alive->cancel(target);
    });
  } catch (const boost::system::system_error&) {
    // The context has ended, and the transfer with it.
  }
}

void CurlEngine::cancel(const Transfer& transfer) {
  const auto node = running_.extract(transfer->easy());
  if (!node) return;
  curl_multi_remove_handle(multi_, node.key());
  finish(node.mapped(), CURLE_ABORTED_BY_CALLBACK, boost::asio::error::operation_aborted);
  pump();
}

void CurlEngine::finish(const Running& running, CURLcode code, boost::system::error_code error) {
  CURL* easy = running.transfer->easy();
  running.transfer->end(code);
  watched_.erase(easy);
  giveBack(easy);
  if (running.waiter) running.waiter->resume(error, {true, running.transfer->counts()});
}

void CurlEngine::tell(Running& running) {
  const TransferCounts& counts = running.transfer->counts();
  if (running.waiter && counts != running.told) std::exchange(running.waiter, nullptr)->resume({}, {false, counts});
}

void CurlEngine::pumpSoon() {
  // One call for all the transfers that start together: one each costs a tenth more.
  if (pumpPosted_) return;
  pumpPosted_ = true;
  boost::asio::post(strand_->executor(), [weak = weak_from_this()] {
    if (const auto engine = weak.lock()) {
      engine->pumpPosted_ = false;
      engine->pump();
    }
  });
}

void CurlEngine::pump() {
  const auto begin = Clock_::now();
  auto now = begin;
  for (int i = 0; i < mostImmediateCalls && deadline_ && *deadline_ <= now && now - begin <= longestTurn; ++i) {
    deadline_.reset();
    int running = 0;
    curl_multi_socket_action(multi_, CURL_SOCKET_TIMEOUT, 0, &running);
    reap();
    now = Clock_::now();
  }
  if (io_->sockets.takeFailedAttempt()) runAll();
  reap();
  for (CURL* easy : watched_) tell(running_.at(easy));
  setTimer();
  if (running_.empty()) {
    io_->sockets.pause();
  } else {
    io_->sockets.wait();
  }
}

void CurlEngine::runAll() {
  // When an attempt to connect fails, libcurl tries the host's next address only when it is called for another reason,
  // and asks for no timer. Its function that runs all transfers is the way to give it one.
  int running = 0;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
  curl_multi_socket_all(multi_, &running);
#pragma GCC diagnostic pop
}

void CurlEngine::act(std::span<const epoll_event> events) {
  for (const auto& event : events) {
    int what = 0;
    if ((event.events & EPOLLIN) != 0) what |= CURL_CSELECT_IN;
    if ((event.events & EPOLLOUT) != 0) what |= CURL_CSELECT_OUT;
    if ((event.events & (EPOLLERR | EPOLLHUP)) != 0) what |= CURL_CSELECT_ERR;
    int running = 0;
    curl_multi_socket_action(multi_, event.data.fd, what, &running);
  }
  pump();
}

void CurlEngine::reap() {
  int left = 0;
  while (const CURLMsg* message = curl_multi_info_read(multi_, &left)) {
    if (message->msg != CURLMSG_DONE) continue;
    // Removing the handle ends the message's life.
    CURL* easy = message->easy_handle;
    const CURLcode code = message->data.result;
    curl_multi_remove_handle(multi_, easy);
    const auto node = running_.extract(easy);
    const CurlTransfer& transfer = *node.mapped().transfer;
    if (code != CURLE_OK && !transfer.connected()) endOverdue(transfer);
    finish(node.mapped(), code, {});
  }
}

/// Ends those that have waited too long to share the connection that could not be made, unless there is another.
/// libcurl would let them try to make one in turn, each for as long as connecting may take.
void CurlEngine::endOverdue(const CurlTransfer& unconnected) {
  const auto origin = URL::parse(unconnected.request.url);
  std::vector<CURL*> overdue;
  for (const auto& [easy, running] : running_) {
    if (!running.transfer->overdue() && !running.transfer->connected()) continue;
    const auto url = URL::parse(running.transfer->request.url);
    if (!origin || !url || !url->hasSameOrigin(*origin)) continue;
    if (running.transfer->connected()) return;
    overdue.push_back(easy);
  }
  for (CURL* easy : overdue) {
    const auto node = running_.extract(easy);
    curl_multi_remove_handle(multi_, easy);
    finish(node.mapped(), CURLE_OPERATION_TIMEDOUT, {});
  }
}

void CurlEngine::setTimer() {
  if (running_.empty()) {
    if (timerDeadline_) io_->timer.cancel();
    timerDeadline_.reset();
    return;
  }
  // A timer that fires early costs less than setting it anew whenever the deadline moves on.
  if (!deadline_ || (timerDeadline_ && *timerDeadline_ <= *deadline_)) return;
  timerDeadline_ = deadline_;
  io_->timer.expires_at(*deadline_);
  io_->timer.async_wait([weak = weak_from_this()](boost::system::error_code error) {
    const auto engine = weak.lock();
    if (!engine || error) return;
    engine->timerDeadline_.reset();
    engine->pump();
  });
}

CURL* CurlEngine::takeHandle() {
  if (idle_.empty()) return curl_easy_init();
  CURL* easy = idle_.back();
  idle_.pop_back();
  return easy;
}

void CurlEngine::giveBack(CURL* easy) {
  if (easy == nullptr) return;
  if (idle_.size() >= mostIdleHandles) {
    curl_easy_cleanup(easy);
    return;
  }
  curl_easy_reset(easy);
  idle_.push_back(easy);
}

// libcurl must not be called from its callbacks: they only take notes.

int CurlEngine::onSocket(CURL*, curl_socket_t number, int what, void* engine, void*) noexcept {
  return static_cast<CurlEngine*>(engine)->io_->sockets.watch(number, what) ? 0 : -1;
}

int CurlEngine::onTimer(CURLM*, long milliseconds, void* engine) noexcept {
  auto& deadline = static_cast<CurlEngine*>(engine)->deadline_;
  if (milliseconds < 0) {
    deadline.reset();
  } else {
    deadline = Clock_::now() + std::chrono::milliseconds(milliseconds);
  }
  return 0;
}

curl_socket_t CurlEngine::onOpen(void* engine, curlsocktype, curl_sockaddr* address) noexcept {
  const int number = ::socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
  if (number >= 0) static_cast<CurlEngine*>(engine)->io_->sockets.opened(number);
  return number;
}

}  // namespace ZAK
