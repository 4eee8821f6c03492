#include "support/Runner.hpp"

#include <zvapikit/http/ManualClock.hpp>
#include <zvapikit/http/ScriptedTransport.hpp>

#include <gmock/gmock.h>

#include <stdexcept>

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
