#include <zvapikit/http/HTTPRetryStrategy.hpp>

#include <algorithm>
#include <cmath>
#include <utility>

namespace ZAK {

HTTPRetryStrategy HTTPRetryStrategy::afterTask(std::chrono::milliseconds delay, Task task, ErrorHandler onError) {
  HTTPRetryStrategy strategy;
  strategy.delay_ = delay;
  strategy.task_ = std::move(task);
  strategy.onError_ = std::move(onError);
  return strategy;
}

HTTPRetryStrategy HTTPRetryStrategy::exponential(double base) {
  HTTPRetryStrategy strategy;
  strategy.base_ = base;
  return strategy;
}

std::chrono::milliseconds HTTPRetryStrategy::delay(int retry, double jitter) const {
  if (base_ <= 0) return delay_;
  // A day at most, so that no base and no count overflow.
  const double seconds = std::min(std::pow(base_, retry - 1) * jitter, 86400.0);
  return std::chrono::milliseconds(std::llround(seconds * 1000));
}

}  // namespace ZAK
