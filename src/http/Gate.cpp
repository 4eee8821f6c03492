#include "http/Gate.hpp"

#include "http/Cancellation.hpp"

#include <boost/asio/async_result.hpp>
#include <boost/asio/cancellation_state.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/asio/use_awaitable.hpp>

namespace asio = boost::asio;

namespace ZAK {

Gate::Gate(const asio::any_io_executor& executor) : timer_(executor, asio::steady_timer::time_point::max()) {}

void Gate::open() {
  const std::scoped_lock lock(mutex_);
  // Ends a wait under way and lets a later one end at once.
  timer_.expires_at(asio::steady_timer::time_point());
}

asio::awaitable<void> Gate::wait(std::shared_ptr<Gate> gate) {
  co_await acceptAllCancellation();
  // Holds the gate itself: once the timer waits, another thread may resume the coroutine and drop its own.
  const auto start = [](auto handler, std::shared_ptr<Gate> self) {
    const std::scoped_lock lock(self->mutex_);
    self->timer_.async_wait(std::move(handler));
  };
  boost::system::error_code ended;
  auto token = asio::redirect_error(asio::use_awaitable, ended);
  co_await asio::async_initiate<decltype(token), void(boost::system::error_code)>(start, token, gate);
  const asio::cancellation_state state = co_await asio::this_coro::cancellation_state;
  if (state.cancelled() != asio::cancellation_type::none) throwCancelled();
}

}  // namespace ZAK
