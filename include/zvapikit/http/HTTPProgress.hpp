#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <utility>

namespace ZAK {

/// Whom to tell how far a call has come.
///
/// Both functions are called by the call's own coroutine, so on the caller's executor, never while another of the two
/// or the call itself does anything, and never after the call has ended. While one runs the transfer goes on; what
/// happens meanwhile is told in one, so that a slow function holds nothing up and is never flooded. The last number of
/// an attempt is always told, unless the call is cancelled. What a function throws ends the transfer, and is what the
/// call throws.
///
/// Every attempt, and every request that a redirect leads to, counts from 0 again.
///
/// Thread safety: as a standard container.
struct HTTPProgress {
  /// Bytes so far, and in all; the latter is absent when nobody knows.
  using Function = std::function<void(std::uint64_t done, std::optional<std::uint64_t> total)>;

  HTTPProgress() = default;
  /// All fields, in their order.
  HTTPProgress(Function sent_, Function received_) : sent(std::move(sent_)), received(std::move(received_)) {}

  /// Of the request's body; not called for a request without one.
  Function sent;
  /// Of the body of an answer whose status is 2xx, as it came, before decompression.
  Function received;
};

}  // namespace ZAK
