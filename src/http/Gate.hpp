#pragma once

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/awaitable.hpp>
#include <boost/asio/steady_timer.hpp>

#include <memory>
#include <mutex>

namespace ZAK {

/// Holds one coroutine back until it is opened, once, from any thread.
///
/// The waiting coroutine owns its gate and others refer to it weakly, so that destroying the execution context, and
/// with it the coroutine, leaves nothing behind.
class Gate {
 public:
  explicit Gate(const boost::asio::any_io_executor& executor);

  /// Lets the waiter through, also one that comes later.
  void open();

  /// Resumes on the caller's executor, which must be the gate's, when the gate is open. Cancellation of any type ends
  /// the wait with `operation_aborted`.
  static boost::asio::awaitable<void> wait(std::shared_ptr<Gate> gate);

 private:
  // Guards the timer against an opening while the wait begins on another thread.
  std::mutex mutex_;
  boost::asio::steady_timer timer_;
};

}  // namespace ZAK
