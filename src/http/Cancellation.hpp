#pragma once

#include <boost/asio/awaitable.hpp>
#include <boost/asio/cancellation_state.hpp>
#include <boost/asio/error.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/system/system_error.hpp>

namespace ZAK {

/// Lets cancellation of every type, `total` included, reach what the calling coroutine awaits from here on. Ends at
/// once with `operation_aborted` when the coroutine was cancelled before: opening it would forget that.
inline boost::asio::awaitable<void> openToEveryCancellation() {
  const boost::asio::cancellation_state state = co_await boost::asio::this_coro::cancellation_state;
  if (state.cancelled() != boost::asio::cancellation_type::none) {
    throw boost::system::system_error(boost::asio::error::operation_aborted);
  }
  co_await boost::asio::this_coro::reset_cancellation_state(boost::asio::enable_total_cancellation());
}

}  // namespace ZAK
