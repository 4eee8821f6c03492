#include "support/Runner.hpp"

#include <zvapikit/auth/TokenDto.hpp>
#include <zvapikit/http/ManualClock.hpp>
#include <zvapikit/http/ScriptedTransport.hpp>
#include <zvapikit/json/JSONDecoder.hpp>

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

TEST(ScriptedTransport, servesItsScript) {
  Tests::Runner runner;
  ScriptedTransport transport;
  ScriptedHold hold;
  transport.add(ScriptedAnswer(201), hold);
  transport.add(HTTPMethod::post, "/posts", ScriptedAnswer(202));
  transport.add(HTTPMethod::post, "/posts", ScriptedAnswer(203));
  TransferRequest request;
  request.url = "https://h.example/api/posts";
  Tests::Running<TransferResult> held(runner.context(), transport.perform(request));
  const auto post = [&](std::string url) {
    request.method = HTTPMethod::post;
    request.url = std::move(url);
    Tests::Running<TransferResult> call(runner.context(), transport.perform(request));
    runner.poll();
    return call.result().response.statusCode.code();
  };
  EXPECT_EQ(post("https://h.example/api/posts?x=/"), 202);
  EXPECT_EQ(post("https://h.example/posts"), 203);
  EXPECT_EQ(hold.waiting(), 1u);
  EXPECT_THAT([&] { post("https://h.example/posts?secret"); },
              testing::ThrowsMessage<std::logic_error>("ScriptedTransport: no answer for POST /posts"));
  EXPECT_FALSE(held.done());
  hold.release();
  runner.drain();
  EXPECT_EQ(held.result().response.statusCode.code(), 201);
  EXPECT_EQ(transport.requests().size(), 4u);
}

TEST(ScriptedTransport, signsInBehindTokenAnswersAndBeforeGeneralOnes) {
  Tests::Runner runner;
  ScriptedTransport transport;
  transport.signIn(std::chrono::seconds(90));
  transport.add(ScriptedAnswer(200, "general"));
  transport.add(HTTPMethod::post, "/token", ScriptedAnswer(401, "refused"));
  const auto ask = [&](HTTPMethod method, const std::string& path) {
    TransferRequest request;
    request.method = method;
    request.url = "https://auth.example/main" + path;
    return runner.run(transport.perform(request)).response.body;
  };
  EXPECT_EQ(ask(HTTPMethod::post, "/token?grant_type=firebase"), "refused");
  for (const std::string number : {"1", "2"}) {
    const auto token = JSONDecoder().decode<TokenDto>(ask(HTTPMethod::post, "/token"));
    EXPECT_EQ(token.accessToken, "access-" + number);
  }
  EXPECT_EQ(ask(HTTPMethod::get, "/token"), "general");
  EXPECT_EQ(transport.requests(HTTPMethod::post, "/token").size(), 3u);
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

}  // namespace
}  // namespace ZAK
