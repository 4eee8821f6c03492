#include "http/Cancellation.hpp"

#include <boost/asio/cancellation_state.hpp>
#include <boost/asio/error.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/system/system_error.hpp>

namespace asio = boost::asio;

namespace ZAK {

asio::awaitable<void> acceptAllCancellation() {
  const asio::cancellation_state state = co_await asio::this_coro::cancellation_state;
  if (state.cancelled() != asio::cancellation_type::none) throwCancelled();
  co_await asio::this_coro::reset_cancellation_state(asio::enable_total_cancellation());
}

void throwCancelled() { throw boost::system::system_error(asio::error::operation_aborted); }

bool isCancellation(const std::exception_ptr& error) noexcept {
  if (!error) return false;
  try {
    std::rethrow_exception(error);
  } catch (const boost::system::system_error& failure) {
    return failure.code() == asio::error::operation_aborted;
  } catch (...) {
    return false;
  }
}

}  // namespace ZAK
