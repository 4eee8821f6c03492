#include "http/Cancellation.hpp"

#include <zvapikit/http/Clock.hpp>

#include <boost/asio/steady_timer.hpp>
#include <boost/asio/use_awaitable.hpp>

namespace ZAK {
namespace {

boost::asio::awaitable<void> waitOnTimer(std::chrono::milliseconds duration) {
  co_await acceptAllCancellation();
  const auto executor = co_await boost::asio::this_coro::executor;
  boost::asio::steady_timer timer(executor, duration);
  co_await timer.async_wait(boost::asio::use_awaitable);
}

class SystemClock final : public Clock {
 public:
  [[nodiscard]] Date now() const override {
    return std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now());
  }

  boost::asio::awaitable<void> wait(std::chrono::milliseconds duration) override { return waitOnTimer(duration); }
};

}  // namespace

std::shared_ptr<Clock> Clock::system() {
  static const auto clock = std::make_shared<SystemClock>();
  return clock;
}

}  // namespace ZAK
