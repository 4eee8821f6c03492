#pragma once

#include <chrono>

namespace ZAK {

/// An instant, to the microsecond, counted from 1970-01-01T00:00:00Z without leap seconds.
using Date = std::chrono::sys_time<std::chrono::microseconds>;

}  // namespace ZAK
