#include "http/Retry.hpp"

#include <gtest/gtest.h>

#include <stdexcept>

namespace ZAK {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

/// Always decides the same, and counts how often it was asked.
struct FixedValidator : HTTPValidator {
  explicit FixedValidator(HTTPValidatorResult decision) : result(std::move(decision)) {}
  HTTPValidatorResult validate(const HTTPResponse&, const HTTPRequest&) override {
    ++calls;
    return result;
  }
  HTTPValidatorResult result;
  int calls = 0;
};

std::shared_ptr<FixedValidator> failing(std::shared_ptr<const std::exception> reason) {
  return std::make_shared<FixedValidator>(HTTPValidatorResult::fail(std::move(reason)));
}

HTTPResponse answer(int status) {
  HTTPResponse response;
  response.statusCode = HTTPStatusCode(status);
  response.answerStarted = true;
  return response;
}

HTTPResponse failedTransfer(bool answerStarted = false) {
  HTTPResponse response;
  response.error = HTTPError(HTTPError::Kind::connectionLost, HTTPStatusCode(), "connection lost", 56);
  response.answerStarted = answerStarted;
  return response;
}

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
    HTTPResponse response = answer(c.status);
    if (c.retryAfter) response.headers.set({"retry-after", c.retryAfter});
    EXPECT_EQ(retryDelay(c.strategy, response, c.retry, c.jitter, now), c.expected)
        << c.retry << " " << c.status << " " << (c.retryAfter ? c.retryAfter : "-");
  }
}

TEST(Retry, defaultValidatorRepeatsOnlyWhatIsSafe) {
  struct Case {
    HTTPMethod method;
    HTTPResponse response;
    bool retried;
  };
  const Case cases[] = {
      {HTTPMethod::get, failedTransfer(), true},      {HTTPMethod::head, failedTransfer(), true},
      {HTTPMethod::put, failedTransfer(), true},      {HTTPMethod::delete_, failedTransfer(), true},
      {HTTPMethod::post, failedTransfer(), false},    {HTTPMethod::patch, failedTransfer(), false},
      {HTTPMethod::get, failedTransfer(true), false}, {HTTPMethod::get, answer(503), false},
      {HTTPMethod::get, answer(200), false},
  };
  for (const Case& c : cases) {
    HTTPRequest request(c.method, "/a");
    request.maxRetries = 2;
    HTTPResponse response = c.response;
    const auto strategy = judged(response, request, {makeDefaultValidator()}, 1);
    EXPECT_EQ(strategy.has_value(), c.retried) << rawValue(c.method) << " " << c.response.statusCode.code();
    if (strategy) {
      EXPECT_EQ(strategy->delay(2, 1), seconds(2));
    }
    response = c.response;
    EXPECT_FALSE(judged(response, request, {makeDefaultValidator()}, 2)) << "past the limit";
    EXPECT_EQ(response.error.has_value(), !c.response.statusCode.isSuccess());
  }
}

TEST(Retry, validatorsRunInOrderUntilOneDecides) {
  const auto next = std::make_shared<FixedValidator>(HTTPValidatorResult::next());
  const auto retry = std::make_shared<FixedValidator>(HTTPValidatorResult::retry(HTTPRetryStrategy::exponential(2)));
  const auto reason = std::make_shared<std::runtime_error>("quota");
  const auto fail = failing(reason);
  HTTPRequest request(HTTPMethod::get, "/a");
  request.maxRetries = 2;

  HTTPResponse response = answer(403);
  EXPECT_TRUE(judged(response, request, {next, retry, fail}, 1));
  EXPECT_EQ(next->calls, 1);
  EXPECT_EQ(fail->calls, 0);

  // With the limit used up a retry hands on.
  response = answer(403);
  EXPECT_FALSE(judged(response, request, {retry, fail, next}, 2));
  EXPECT_EQ(next->calls, 1);
  ASSERT_TRUE(response.error);
  EXPECT_EQ(response.error->kind(), HTTPError::Kind::rejected);
  EXPECT_EQ(response.error->statusCode().code(), 403);
  EXPECT_EQ(response.error->description(), "HTTP 403 Forbidden");
  EXPECT_EQ(response.error->underlyingError(), reason);
}

TEST(Retry, aRejectionReadsLikeTheResponse) {
  const HTTPRequest request(HTTPMethod::get, "/a");
  const auto fail = failing(std::make_shared<std::runtime_error>("why"));
  HTTPResponse good = answer(200);
  judged(good, request, {fail}, 0);
  EXPECT_EQ(good.error.value().description(), "HTTP 200 OK");

  HTTPResponse lost = failedTransfer();
  judged(lost, request, {fail}, 0);
  EXPECT_EQ(lost.error.value().description(), "connection lost");
  EXPECT_EQ(lost.error.value().transportCode(), 56);

  // An HTTPError is not wrapped in another.
  const HTTPError own(HTTPError::Kind::invalidAnswer, HTTPStatusCode(200), "not for me");
  HTTPResponse replaced = answer(200);
  judged(replaced, request, {failing(std::make_shared<HTTPError>(own))}, 0);
  EXPECT_EQ(replaced.error.value().kind(), HTTPError::Kind::invalidAnswer);
  EXPECT_EQ(replaced.error.value().description(), "not for me");
}

}  // namespace
}  // namespace ZAK
