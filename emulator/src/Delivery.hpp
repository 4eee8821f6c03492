#pragma once

#include <zvapikit/emulator/EmulatorFault.hpp>
#include <zvapikit/emulator/EmulatorRequest.hpp>

#include <chrono>
#include <cstddef>
#include <string>

namespace ZAK {

/// How one answer goes out, byte by byte.
struct Delivery {
  /// The answer as it should be, or as the fault, if any, has it.
  explicit Delivery(EmulatorResponse response, const EmulatorFault* fault = nullptr);

  std::string bytes;
  std::chrono::milliseconds delay{};
  std::size_t chunk;  ///< bytes sent at a time
  std::chrono::milliseconds interval{};
  EmulatorFault::Ending ending = EmulatorFault::Ending::keepAlive;
};

}  // namespace ZAK
