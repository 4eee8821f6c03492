#pragma once

#include "Router.hpp"

#include <zvapikit/emulator/EmulatorFault.hpp>

#include <cstddef>
#include <optional>
#include <vector>

namespace ZAK {

/// The misbehaviours that were asked for, and how often each was met.
class FaultScript {
 public:
  std::size_t add(EmulatorFault fault);
  /// The fault that this request meets, counted as met; null when there is none.
  [[nodiscard]] const EmulatorFault* meet(const EmulatorRequest& request);
  [[nodiscard]] std::size_t timesMet(std::size_t id) const;
  [[nodiscard]] std::size_t timesMet() const noexcept { return timesMet_; }
  void clear();

 private:
  struct Entry {
    EmulatorFault fault;
    std::optional<PathTemplate> path;
    int left;
    std::size_t met = 0;
  };

  std::vector<Entry> entries_;
  std::size_t timesMet_ = 0;
};

}  // namespace ZAK
