#pragma once

#include <boost/asio/awaitable.hpp>
#include <boost/asio/bind_cancellation_slot.hpp>
#include <boost/asio/cancellation_signal.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/signal_set.hpp>

#include <csignal>
#include <exception>
#include <future>
#include <utility>

namespace zvkit {

/// Runs the context until the work is over and nothing is in flight. Ctrl-C and SIGTERM cancel the work. Throws what
/// the work throws.
template <class T>
T runInterruptibly(boost::asio::io_context& io, boost::asio::awaitable<T> work) {
  boost::asio::cancellation_signal interrupt;
  boost::asio::signal_set signals(io, SIGINT, SIGTERM);
  signals.async_wait([&](boost::system::error_code error, int) {
    if (!error) interrupt.emit(boost::asio::cancellation_type::terminal);
  });
  std::promise<T> result;
  const auto finished = [&](std::exception_ptr failure, auto... value) {
    signals.cancel();
    if (failure) {
      result.set_exception(std::move(failure));
    } else {
      result.set_value(std::move(value)...);
    }
  };
  boost::asio::co_spawn(io, std::move(work), boost::asio::bind_cancellation_slot(interrupt.slot(), finished));
  io.run();
  return result.get_future().get();
}

}  // namespace zvkit
