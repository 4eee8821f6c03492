#pragma once

#include <boost/asio/bind_cancellation_slot.hpp>
#include <boost/asio/cancellation_signal.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/error.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/system/system_error.hpp>

#include <exception>
#include <optional>
#include <utility>

namespace ZAK {

/// A coroutine under way on a test's context, and how it ended.
template <class T>
class Running {
 public:
  Running(boost::asio::io_context& context, boost::asio::awaitable<T> call) {
    boost::asio::co_spawn(context, std::move(call),
                          boost::asio::bind_cancellation_slot(cancel.slot(), [this](std::exception_ptr e, T result) {
                            error = e;
                            if (!e) value = std::move(result);
                            done = true;
                          }));
  }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;

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
  bool done = false;
  std::exception_ptr error;
  std::optional<T> value;
};

}  // namespace ZAK
