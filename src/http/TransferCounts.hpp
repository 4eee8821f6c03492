#pragma once

#include <zvapikit/http/HTTPProgress.hpp>

#include <cstdint>
#include <optional>

namespace ZAK {

/// How far a transfer has come, as `HTTPProgress` tells it.
struct TransferCounts {
  struct Direction {
    std::uint64_t done = 0;
    std::optional<std::uint64_t> total{};

    bool operator==(const Direction&) const = default;
  };

  /// Absent while there is nothing to tell.
  std::optional<Direction> sent{};
  std::optional<Direction> received{};

  bool operator==(const TransferCounts&) const = default;

  /// Tells of what differs from `told`.
  void tell(const HTTPProgress& progress, const TransferCounts& told) const {
    if (sent && sent != told.sent && progress.sent) progress.sent(sent->done, sent->total);
    if (received && received != told.received && progress.received) progress.received(received->done, received->total);
  }
};

}  // namespace ZAK
