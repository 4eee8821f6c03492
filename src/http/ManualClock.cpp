#include "http/Gate.hpp"

#include <zvapikit/http/ManualClock.hpp>

#include <boost/asio/this_coro.hpp>

#include <algorithm>
#include <mutex>

namespace asio = boost::asio;

namespace ZAK {

struct ManualClock::State {
  struct Wait {
    Date end;
    std::weak_ptr<Gate> gate;
  };

  State(Mode mode_, Date now_) : mode(mode_), now(now_) {}

  const Mode mode;
  mutable std::mutex mutex;
  Date now;
  std::vector<std::chrono::milliseconds> waits;
  std::vector<Wait> pending;

  void moveTo(Date instant) {
    now = instant;
    std::erase_if(pending, [instant](const Wait& wait) {
      const std::shared_ptr<Gate> gate = wait.gate.lock();
      if (gate && wait.end <= instant) gate->open();
      return !gate || wait.end <= instant;
    });
  }

  static asio::awaitable<void> wait(std::shared_ptr<State> state, std::chrono::milliseconds duration) {
    const auto gate = std::make_shared<Gate>(co_await asio::this_coro::executor);
    {
      const std::scoped_lock lock(state->mutex);
      state->waits.push_back(duration);
      const Date end = state->now + duration;
      state->pending.push_back(Wait{end, gate});
      state->moveTo(state->mode == autoAdvance ? std::max(end, state->now) : state->now);
    }
    co_await Gate::wait(gate);
  }
};

ManualClock::ManualClock(Mode mode, Date now) : state_(std::make_shared<State>(mode, now)) {}
ManualClock::~ManualClock() = default;

Date ManualClock::now() const {
  const std::scoped_lock lock(state_->mutex);
  return state_->now;
}

asio::awaitable<void> ManualClock::wait(std::chrono::milliseconds duration) { return State::wait(state_, duration); }

void ManualClock::advance(std::chrono::microseconds duration) {
  const std::scoped_lock lock(state_->mutex);
  state_->moveTo(state_->now + duration);
}

void ManualClock::set(Date now) {
  const std::scoped_lock lock(state_->mutex);
  state_->moveTo(now);
}

std::vector<std::chrono::milliseconds> ManualClock::waits() const {
  const std::scoped_lock lock(state_->mutex);
  return state_->waits;
}

std::size_t ManualClock::pendingWaits() const {
  const std::scoped_lock lock(state_->mutex);
  return static_cast<std::size_t>(std::count_if(state_->pending.begin(), state_->pending.end(),
                                                [](const State::Wait& wait) { return !wait.gate.expired(); }));
}

}  // namespace ZAK
