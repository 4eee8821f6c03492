#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/json/Date.hpp>

#include <boost/asio/awaitable.hpp>

#include <chrono>
#include <memory>

namespace ZAK {

/// The kit's source of time: the instant now, and waiting. Hosts' tests replace it by a `ManualClock`.
///
/// Thread safety: callable from any thread.
class ZVAPIKIT_API Clock {
 public:
  virtual ~Clock() = default;

  /// The instant at which it is called.
  [[nodiscard]] virtual Date now() const = 0;
  /// Resumes on the caller's executor when `duration` is over. Cancellation of any type ends the wait at once with
  /// `operation_aborted`. The awaitable keeps the clock alive.
  virtual boost::asio::awaitable<void> wait(std::chrono::milliseconds duration) = 0;

  /// The machine's clock; one object for the whole process.
  static std::shared_ptr<Clock> system();
};

}  // namespace ZAK
