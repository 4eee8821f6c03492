#include "support/Runner.hpp"

#include <zvapikit/auth/TokenDto.hpp>
#include <zvapikit/http/ScriptedTransport.hpp>
#include <zvapikit/json/JSONDecoder.hpp>

#include <gmock/gmock.h>

#include <stdexcept>

namespace ZAK {
namespace {

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

}  // namespace
}  // namespace ZAK
