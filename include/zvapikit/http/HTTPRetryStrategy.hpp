#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/http/HTTPRequest.hpp>

#include <boost/asio/awaitable.hpp>

#include <chrono>
#include <exception>
#include <functional>
#include <memory>

namespace ZAK {

/// What a validator wants done before a request is sent again.
///
/// Thread safety: as a standard container.
class ZVAPIKIT_API HTTPRetryStrategy {
 public:
  /// May change the request, which is then sent as changed. Must not keep references to its arguments' targets beyond
  /// its own completion.
  using Task = std::function<boost::asio::awaitable<void>(std::shared_ptr<HTTPRequest>)>;
  /// Told of a task's failure. What it throws is swallowed.
  using ErrorHandler = std::function<void(std::exception_ptr)>;

  /// Runs `task`, waits `delay`, then sends. A task that fails is told to `onError` and the request is sent all the
  /// same; one that ends with `operation_aborted` ends the call.
  static HTTPRetryStrategy afterTask(std::chrono::milliseconds delay, Task task, ErrorHandler onError);

  /// Waits base^(n-1) seconds times a random factor in [0.5, 1] before retry n (from 1), then sends.
  static HTTPRetryStrategy exponential(double base);

  /// What is run before the wait; empty for none.
  [[nodiscard]] const Task& task() const noexcept { return task_; }
  /// Who is told when the task fails; empty for nobody.
  [[nodiscard]] const ErrorHandler& onError() const noexcept { return onError_; }

  /// The wait before retry `retry` (from 1), a day at most; `jitter` is in [0.5, 1]. The client waits longer where a
  /// 429 or 503 asks for it by Retry-After, up to a minute.
  [[nodiscard]] std::chrono::milliseconds delay(int retry, double jitter) const;

 private:
  HTTPRetryStrategy() = default;

  double base_ = 0;
  std::chrono::milliseconds delay_{};
  Task task_;
  ErrorHandler onError_;
};

}  // namespace ZAK
