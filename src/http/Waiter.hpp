#pragma once

#include <boost/asio/associated_cancellation_slot.hpp>
#include <boost/asio/associated_executor.hpp>
#include <boost/asio/async_result.hpp>
#include <boost/asio/awaitable.hpp>
#include <boost/asio/execution/outstanding_work.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/prefer.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/system/error_code.hpp>

#include <memory>
#include <utility>

namespace ZAK {

/// A suspended coroutine that waits for one result. Destroying it destroys the coroutine.
///
/// Whoever holds one must let go of it when the execution context ends (see `ContextBound`).
template <class Result>
class Waiter {
 public:
  virtual ~Waiter() = default;
  /// Resumes the coroutine on its own executor, never within this call. At most once.
  virtual void resume(boost::system::error_code error, Result result) = 0;
};

/// A `Waiter` for a completion handler. Keeps the handler's executor busy until it is resumed.
template <class Result, class Handler>
class HandlerWaiter final : public Waiter<Result> {
 public:
  explicit HandlerWaiter(Handler handler)
      : handler_(std::move(handler)),
        executor_(boost::asio::prefer(boost::asio::get_associated_executor(handler_),
                                      boost::asio::execution::outstanding_work.tracked)) {}

  void resume(boost::system::error_code error, Result result) override {
    const auto executor = executor_;
    boost::asio::post(executor, [handler = std::move(handler_), error, result = std::move(result)]() mutable {
      // Here and not earlier: on the caller's executor it cannot race with a signal being emitted.
      boost::asio::get_associated_cancellation_slot(handler).clear();
      std::move(handler)(error, std::move(result));
    });
  }

 private:
  using Executor =
      decltype(boost::asio::prefer(std::declval<typename boost::asio::associated_executor<Handler>::type>(),
                                   boost::asio::execution::outstanding_work.tracked));

  Handler handler_;
  Executor executor_;
};

/// Suspends the calling coroutine and calls `start(waiter, slot)`, which sees to it that the waiter is resumed, and
/// may install a cancellation handler in the slot. An error is thrown as `boost::system::system_error`.
template <class Result, class Start>
boost::asio::awaitable<Result> suspend(Start start) {
  return boost::asio::async_initiate<const boost::asio::use_awaitable_t<>, void(boost::system::error_code, Result)>(
      [](auto handler, Start begin) {
        using Handler = decltype(handler);
        const auto slot = boost::asio::get_associated_cancellation_slot(handler);
        std::unique_ptr<Waiter<Result>> waiter = std::make_unique<HandlerWaiter<Result, Handler>>(std::move(handler));
        begin(std::move(waiter), slot);
      },
      boost::asio::use_awaitable, std::move(start));
}

}  // namespace ZAK
