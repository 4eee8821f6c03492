#include "http/Retry.hpp"

#include <gtest/gtest.h>

namespace ZAK {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

TEST(Retry, delayGrowsAndObeysTheServer) {
  const Date now = Date(seconds(784111777));  // Sun, 06 Nov 1994 08:49:37 GMT
  struct Case {
    HTTPRetryStrategy strategy;
    int retry;
    double jitter;
    int status;
    const char* retryAfter;
    milliseconds expected;
  };
  const HTTPRetryStrategy back = HTTPRetryStrategy::exponential(2);
  const HTTPRetryStrategy after = HTTPRetryStrategy::afterTask(milliseconds(100), {}, {});
  const Case cases[] = {
      {back, 1, 1, 500, nullptr, seconds(1)},
      {back, 1, 0.5, 500, nullptr, milliseconds(500)},
      {back, 4, 0.75, 500, nullptr, seconds(6)},
      {HTTPRetryStrategy::exponential(1), 9, 1, 500, nullptr, seconds(1)},
      {back, 5000, 1, 500, nullptr, std::chrono::hours(24)},
      {after, 3, 0.5, 401, nullptr, milliseconds(100)},
      {back, 1, 1, 429, "7", seconds(7)},
      {back, 1, 1, 503, "0", seconds(1)},
      {back, 5, 1, 503, "7", seconds(16)},
      {back, 1, 1, 500, "7", seconds(1)},
      {back, 1, 1, 503, "61", seconds(60)},
      {back, 8, 1, 503, "61", seconds(128)},
      {back, 1, 1, 503, "99999999999999999999", seconds(60)},
      {back, 1, 1, 503, "-5", seconds(1)},
      {back, 1, 1, 503, "7.5", seconds(1)},
      {back, 1, 1, 503, "", seconds(1)},
      {back, 1, 1, 503, "Sun, 06 Nov 1994 08:50:07 GMT", seconds(30)},
      {back, 1, 1, 503, "Sat, 06 Nov 2094 08:50:07 GMT", seconds(60)},
      {back, 1, 1, 503, "Sun, 06 Nov 1994 08:00:00 GMT", seconds(1)},
      {back, 1, 1, 503, "Sun, 06 Nov 1994 08:50:07 GMT!", seconds(1)},
  };
  for (const Case& c : cases) {
    HTTPResponse response;
    response.statusCode = HTTPStatusCode(c.status);
    if (c.retryAfter) response.headers.set({"retry-after", c.retryAfter});
    EXPECT_EQ(retryDelay(c.strategy, response, c.retry, c.jitter, now), c.expected)
        << c.retry << " " << c.status << " " << (c.retryAfter ? c.retryAfter : "-");
  }
}

}  // namespace
}  // namespace ZAK
