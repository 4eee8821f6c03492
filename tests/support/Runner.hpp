#pragma once

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/awaitable.hpp>
#include <boost/asio/bind_cancellation_slot.hpp>
#include <boost/asio/cancellation_signal.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/error.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/system/system_error.hpp>
#include <gtest/gtest.h>

#include <chrono>
#include <exception>
#include <memory>
#include <optional>
#include <stdexcept>
#include <type_traits>
#include <utility>
#include <variant>

namespace ZAK::Tests {

/// A coroutine under way on a test's context, and how it ended. To be held until it has, or the context has.
template <class T>
class Running {
 public:
  Running(boost::asio::io_context& context, boost::asio::awaitable<T> call) {
    boost::asio::co_spawn(context, std::move(call),
                          boost::asio::bind_cancellation_slot(cancel.slot(), [this](std::exception_ptr e, auto&&... r) {
                            error = e;
                            if (!e) value.emplace(std::forward<decltype(r)>(r)...);
                          }));
  }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;

  [[nodiscard]] bool done() const { return error || value; }
  /// What the call yielded; throws what it threw.
  T result() {
    if (error) std::rethrow_exception(error);
    if constexpr (!std::is_void_v<T>) return std::move(value).value();
  }
  [[nodiscard]] bool wasCancelled() const {
    try {
      if (error) std::rethrow_exception(error);
    } catch (const boost::system::system_error& failure) {
      return failure.code() == boost::asio::error::operation_aborted;
    } catch (...) {
    }
    return false;
  }

  boost::asio::cancellation_signal cancel;
  std::exception_ptr error;
  std::optional<std::conditional_t<std::is_void_v<T>, std::monostate, T>> value;
};

/// An `io_context` for one test, which must have run dry when the test ends.
class Runner {
 public:
  ~Runner() {
    if (!context_) return;
    context_->restart();
    EXPECT_EQ(context_->poll(), 0u) << "handlers are left";
    EXPECT_TRUE(context_->stopped()) << "work is left";
  }

  [[nodiscard]] boost::asio::io_context& context() { return *context_; }
  [[nodiscard]] boost::asio::any_io_executor executor() { return context_->get_executor(); }

  /// Runs the operation to its end and yields its result or throws what it throws.
  template <class T>
  T run(boost::asio::awaitable<T> operation) {
    Running<T> call(*context_, std::move(operation));
    drain();
    return call.result();
  }

  /// Starts the operation; it gets on with `poll`, `drain` and `run`.
  template <class T, class Done>
  void start(boost::asio::awaitable<T> operation, boost::asio::cancellation_slot slot, Done done) {
    boost::asio::co_spawn(*context_, std::move(operation), boost::asio::bind_cancellation_slot(slot, std::move(done)));
  }

  /// Runs what is ready, and waits for nothing.
  void poll() {
    context_->restart();
    context_->poll();
  }

  /// Runs until nothing is in flight. Something that never ends fails the test.
  void drain(std::chrono::seconds limit = std::chrono::seconds(60)) {
    context_->restart();
    context_->run_for(limit);
    if (!context_->stopped()) throw std::runtime_error("something is still in flight");
  }

  /// Runs until the condition holds; false when that takes longer than any test should.
  template <class Condition>
  bool runUntil(Condition condition) {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!condition()) {
      if (std::chrono::steady_clock::now() > limit) return false;
      context_->restart();
      context_->run_for(std::chrono::milliseconds(1));
    }
    return true;
  }

  void destroyContext() { context_.reset(); }

 private:
  std::unique_ptr<boost::asio::io_context> context_ = std::make_unique<boost::asio::io_context>(1);
};

}  // namespace ZAK::Tests
