#include "Running.hpp"

#include <zvapikit/http/ManualClock.hpp>
#include <zvapikit/http/ScriptedTransport.hpp>

#include <boost/asio/detached.hpp>
#include <boost/asio/thread_pool.hpp>
#include <boost/asio/use_future.hpp>
#include <gmock/gmock.h>

#include <stdexcept>
#include <thread>

namespace ZAK {
namespace {

namespace asio = boost::asio;
using std::chrono::milliseconds;

TransferRequest request(HTTPMethod method, std::string url) {
  TransferRequest request;
  request.method = method;
  request.url = std::move(url);
  return request;
}

TEST(ScriptedTransport, servesItsScript) {
  asio::io_context context;
  ScriptedTransport transport;
  transport.add(ScriptedAnswer(201));
  transport.add(HTTPMethod::post, "/posts", ScriptedAnswer(202));
  transport.add(HTTPMethod::post, "/posts", ScriptedAnswer(203));
  const std::vector<std::tuple<HTTPMethod, std::string, int>> asked{
      {HTTPMethod::get, "https://h.example/api/posts", 201},
      {HTTPMethod::post, "https://h.example/api/posts?x=/", 202},
      {HTTPMethod::post, "https://h.example/posts", 203},
      {HTTPMethod::post, "https://h.example/posts?secret", 0},
  };
  for (const auto& [method, url, status] : asked) {
    Running<TransferResult> call(context, transport.perform(request(method, url)));
    context.run();
    context.restart();
    if (status != 0) {
      EXPECT_EQ(call.value.value().response.statusCode.code(), status) << url;
      continue;
    }
    try {
      std::rethrow_exception(call.error);
    } catch (const std::logic_error& failure) {
      EXPECT_STREQ(failure.what(), "ScriptedTransport: no answer for POST /posts");
    }
  }
  EXPECT_EQ(transport.requests().size(), asked.size());
}

TEST(ScriptedTransport, letsTheTestOrderCalls) {
  asio::io_context context;
  ScriptedTransport transport;
  ScriptedHold first, second;
  transport.add(ScriptedAnswer(201), first);
  transport.add(ScriptedAnswer(202), second);
  Running<TransferResult> one(context, transport.perform(request(HTTPMethod::get, "https://h.example")));
  Running<TransferResult> two(context, transport.perform(request(HTTPMethod::get, "https://h.example")));
  context.poll();
  EXPECT_EQ(first.waiting() + second.waiting(), 2u);
  second.release();
  context.poll();
  EXPECT_TRUE(two.done);
  EXPECT_FALSE(one.done);
  first.release();
  context.run();
  EXPECT_EQ(one.value.value().response.statusCode.code(), 201);
  EXPECT_EQ(two.value.value().response.statusCode.code(), 202);
}

TEST(ScriptedTransport, contextMayEndWithCallsHeld) {
  ScriptedHold hold;
  ManualClock clock;
  {
    asio::io_context context;
    asio::co_spawn(context, hold.wait(), asio::detached);
    asio::co_spawn(context, clock.wait(milliseconds(5)), asio::detached);
    context.poll();
    EXPECT_EQ(hold.waiting() + clock.pendingWaits(), 2u);
  }
  EXPECT_EQ(hold.waiting() + clock.pendingWaits(), 0u);
  hold.release();
  clock.advance(milliseconds(5));
}

// A release that falls between the start of a call and the beginning of its wait must not be lost.
TEST(ScriptedTransport, releasesFromAnotherThreadAreNotLost) {
  asio::thread_pool pool(2);
  for (int i = 0; i < 500; ++i) {
    ScriptedHold hold;
    ManualClock clock;
    auto held = asio::co_spawn(pool, hold.wait(), asio::use_future);
    auto timed = asio::co_spawn(pool, clock.wait(milliseconds(1)), asio::use_future);
    while (clock.waits().empty()) std::this_thread::yield();
    hold.release();
    clock.advance(milliseconds(1));
    held.get();
    timed.get();
  }
}

TEST(ManualClock, waitsEndWhenTimeReachesThem) {
  asio::io_context context;
  ManualClock clock;
  const Date start = clock.now();
  std::vector<int> ended;
  for (const int length : {30, 10, 20}) {
    asio::co_spawn(context, clock.wait(milliseconds(length)), [&ended, length](const std::exception_ptr& error) {
      if (!error) ended.push_back(length);
    });
  }
  context.poll();
  EXPECT_THAT(clock.waits(), testing::ElementsAre(milliseconds(30), milliseconds(10), milliseconds(20)));
  clock.advance(std::chrono::microseconds(9999));
  context.poll();
  EXPECT_TRUE(ended.empty());
  clock.advance(std::chrono::microseconds(1));
  context.poll();
  EXPECT_THAT(ended, testing::ElementsAre(10));
  clock.set(start - std::chrono::hours(1));
  context.poll();
  EXPECT_EQ(clock.pendingWaits(), 2u);
  clock.set(start + std::chrono::hours(1));
  context.run();
  EXPECT_EQ(ended.size(), 3u);
}

TEST(ManualClock, movesByItselfWhereAsked) {
  asio::io_context context;
  ManualClock clock(ManualClock::autoAdvance, Date());
  asio::co_spawn(context, clock.wait(milliseconds(7)), asio::detached);
  context.run();
  EXPECT_EQ(clock.now(), Date(milliseconds(7)));
}

}  // namespace
}  // namespace ZAK
