#pragma once

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/awaitable.hpp>
#include <boost/asio/bind_cancellation_slot.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>
#include <gtest/gtest.h>

#include <chrono>
#include <exception>
#include <memory>
#include <optional>
#include <stdexcept>
#include <type_traits>
#include <utility>

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
    std::exception_ptr failure;
    if constexpr (std::is_void_v<T>) {
      start(std::move(operation), {}, [&](std::exception_ptr error) { failure = error; });
      drain();
      if (failure) std::rethrow_exception(failure);
    } else {
      std::optional<T> result;
      start(std::move(operation), {}, [&](std::exception_ptr error, T value) {
        failure = error;
        if (!error) result.emplace(std::move(value));
      });
      drain();
      if (failure) std::rethrow_exception(failure);
      if (!result) throw std::logic_error("the operation did not end");
      return std::move(*result);
    }
  }

  /// Starts the operation; it gets on with `poll`, `drain` and `run`.
  template <class T, class Done>
  void start(boost::asio::awaitable<T> operation, boost::asio::cancellation_slot slot, Done done) {
    boost::asio::co_spawn(*context_, std::move(operation), boost::asio::bind_cancellation_slot(slot, std::move(done)));
  }
  template <class T>
  void start(boost::asio::awaitable<T> operation) {
    boost::asio::co_spawn(*context_, std::move(operation), [](std::exception_ptr error, auto&&...) {
      if (error) std::rethrow_exception(error);
    });
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

  void destroyContext() { context_.reset(); }

 private:
  std::unique_ptr<boost::asio::io_context> context_ = std::make_unique<boost::asio::io_context>(1);
};
