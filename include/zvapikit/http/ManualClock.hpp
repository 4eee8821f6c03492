#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/http/Clock.hpp>

#include <chrono>
#include <cstddef>
#include <memory>
#include <vector>

namespace ZAK {

/// A clock for tests: time passes when the test says so.
///
/// Thread safety: callable from any thread.
class ZVAPIKIT_API ManualClock final : public Clock {
 public:
  /// How waits end.
  enum Mode {
    manual,      ///< a wait lasts until `advance` or `set` reaches its end
    autoAdvance  ///< a wait moves the clock to its end by itself and is over, without sleeping
  };

  /// A clock that shows `now`, by default 2023-11-14T22:13:20Z.
  explicit ManualClock(Mode mode = manual, Date now = Date(std::chrono::seconds(1'700'000'000)));
  ~ManualClock() override;

  [[nodiscard]] Date now() const override;
  /// As in `Clock`. Until it is over it counts as work of the caller's executor.
  boost::asio::awaitable<void> wait(std::chrono::milliseconds duration) override;

  /// Moves the clock on; waits whose end is reached are over.
  void advance(std::chrono::microseconds duration);
  /// Sets the time, also backwards; waits whose end is reached are over.
  void set(Date now);

  /// The durations of all waits so far, in the order of their beginnings.
  [[nodiscard]] std::vector<std::chrono::milliseconds> waits() const;
  /// How many waits last at this moment.
  [[nodiscard]] std::size_t pendingWaits() const;

 private:
  struct State;
  std::shared_ptr<State> state_;
};

}  // namespace ZAK
