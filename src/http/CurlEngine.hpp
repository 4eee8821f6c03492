#pragma once

#include "http/ContextBound.hpp"
#include "http/ContextStrand.hpp"
#include "http/CurlSettings.hpp"
#include "http/CurlSockets.hpp"
#include "http/CurlTransfer.hpp"
#include "http/Waiter.hpp"

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/awaitable.hpp>
#include <boost/asio/basic_waitable_timer.hpp>
#include <boost/system/error_code.hpp>
#include <curl/curl.h>

#include <chrono>
#include <memory>
#include <optional>
#include <span>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace ZAK {

/// Drives transfers through libcurl's multi-socket interface on a strand of its own.
///
/// Thread safety: `run` is callable from any thread, all else happens on the strand, or on the thread that destroys the
/// execution context or the last reference.
class CurlEngine final : public ContextBound, public std::enable_shared_from_this<CurlEngine> {
  struct Private {
    explicit Private() = default;
  };

 public:
  using Transfer = std::shared_ptr<CurlTransfer>;
  /// Where a transfer stands.
  struct Stage {
    bool ended = false;
    TransferCounts counts{};
  };

  /// \throws std::invalid_argument when the executor is empty.
  static std::shared_ptr<CurlEngine> create(const boost::asio::any_io_executor& executor, TransportOptions options);
  CurlEngine(Private, std::shared_ptr<ContextStrand> strand, TransportOptions options);
  ~CurlEngine() override;

  /// Starts the transfer, or goes on with one that was started, and resumes on the caller's executor when it is
  /// complete or, if its request wants to know, has come further than `told`. It goes on by itself in between; who does
  /// not wait for its end has to `abandon` it. A cancellation that reaches the caller's coroutine ends the transfer at
  /// once with `operation_aborted`, which is all that this throws.
  boost::asio::awaitable<Stage> run(Transfer transfer, TransferCounts told = {});
  /// Ends the transfer, unless it has ended, which nobody is told of. Callable from any thread.
  void abandon(const Transfer& transfer) noexcept;

  void contextShutdown() noexcept override;

 private:
  using Timer =
      boost::asio::basic_waitable_timer<std::chrono::steady_clock, boost::asio::wait_traits<std::chrono::steady_clock>,
                                        ContextStrand::Executor>;
  /// What refers to the execution context.
  struct IO {
    IO(const ContextStrand::Executor& executor, std::weak_ptr<void> owner, CurlSockets::Ready ready)
        : timer(executor), sockets(executor, std::move(owner), std::move(ready)) {}
    Timer timer;
    CurlSockets sockets;
  };
  struct Running {
    Transfer transfer;
    /// Null while the caller is busy with what it was told.
    std::unique_ptr<Waiter<Stage>> waiter;
    TransferCounts told{};
  };

  void open();
  void close() noexcept;

  void attend(Running attended);
  void start(Running starting);
  void cancel(const Transfer& transfer);
  void finish(const Running& running, CURLcode code, boost::system::error_code error);
  void tell(Running& running);

  void pumpSoon();
  void pump();
  void runAll();
  void act(std::span<const epoll_event> events);
  void reap();
  void endOverdue(const CurlTransfer& unconnected);
  void setTimer();

  CURL* takeHandle();
  void giveBack(CURL* easy);

  static int onSocket(CURL* easy, curl_socket_t number, int what, void* engine, void* unused) noexcept;
  static int onTimer(CURLM* multi, long milliseconds, void* engine) noexcept;
  static curl_socket_t onOpen(void* engine, curlsocktype purpose, curl_sockaddr* address) noexcept;

  std::shared_ptr<ContextStrand> strand_;
  CurlSettings settings_;
  CURLM* multi_ = nullptr;
  std::optional<IO> io_;
  std::unordered_map<CURL*, Running> running_;
  /// Handles for later transfers, reset.
  std::vector<CURL*> idle_;
  /// When libcurl wants to be called next, and when the timer that is running will do so.
  std::optional<std::chrono::steady_clock::time_point> deadline_;
  std::optional<std::chrono::steady_clock::time_point> timerDeadline_;
  bool pumpPosted_ = false;
  /// Those of the running transfers whose requests want to know how far they have come.
  std::unordered_set<CURL*> watched_;
};

}  // namespace ZAK
