#include "RawClient.hpp"

#include <zvapikit/emulator/EmulatorThread.hpp>

#include <boost/asio/error.hpp>
#include <boost/asio/ssl/error.hpp>
#include <boost/beast/http/error.hpp>
#include <gtest/gtest.h>

#include <chrono>

namespace ZAK::Test {
namespace {

using namespace std::chrono_literals;
using Ending = EmulatorFault::Ending;

constexpr const char* host = "mobile-dev.zolvi.example";
constexpr const char* target = "/main/api/content/posts/p1";

boost::system::error_code failure(RawClient& client) {
  try {
    client.send("GET", target);
  } catch (const boost::system::system_error& error) {
    return error.code();
  }
  return {};
}

TEST(EmulatorFaults, MeetTheRequestsTheyAreMeantForAsOftenAsAsked) {
  EmulatorThread emulator;
  const auto busy = emulator->inject({.server = EmulatorServer::mobile,
                                      .method = "GET",
                                      .path = "/content/posts/{id}",
                                      .times = 2,
                                      .answer = EmulatorResponse{503, "busy", {{"Retry-After", "1"}}}});
  const auto later =
      emulator->inject({.predicate = [](const EmulatorRequest& request) { return request.target.ends_with("/p1"); },
                        .times = EmulatorFault::always,
                        .answer = EmulatorResponse{418}});
  RawClient client(*emulator, host);
  EXPECT_EQ(client.send("DELETE", "/main/api/content/posts").status, 401);
  EXPECT_EQ(client.send("GET", "/main/api/content/posts/p2").status, 503);
  EXPECT_EQ(client.send("GET", target).body, "busy");
  for (int i = 0; i < 3; ++i) EXPECT_EQ(client.send("GET", target).status, 418);
  EXPECT_EQ(emulator->timesMet(busy), 2u);
  EXPECT_EQ(emulator->timesMet(later), 3u);
  emulator->clearFaults();
  EXPECT_EQ(client.send("GET", target).status, 401);

  const EmulatorCounts counts = emulator->counts();
  EXPECT_EQ(counts.of("GET /content/posts/{postId}"), 6u);
  EXPECT_EQ(counts.faults, 5u);
  EXPECT_EQ(counts.connections, 1u) << "the connection was kept";
}

TEST(EmulatorFaults, EndConnectionsInTheWayAsked) {
  EmulatorThread emulator;
  struct Case {
    Ending ending;
    boost::system::error_code seen;
  };
  const Case cases[] = {
      {Ending::close, boost::asio::error::eof},
      {Ending::drop, boost::asio::ssl::error::stream_truncated},
      {Ending::reset, boost::asio::error::connection_reset},
  };
  for (const Case& test : cases) {
    emulator->inject({.cutAfter = 30, .ending = test.ending});
    RawClient client(*emulator, host);
    EXPECT_EQ(client.sendForBytes("GET", target, 1000), "HTTP/1.1 401 Unauthorized\r\nCon");
    EXPECT_EQ(client.ending(), test.seen);
    emulator->inject({.ending = test.ending});
    RawClient other(*emulator, host);
    EXPECT_EQ(other.send("GET", target).status, 401) << "the answer itself is whole";
    EXPECT_TRUE(failure(other)) << "but the connection is gone";
  }
}

TEST(EmulatorFaults, SpoilTheAnswersBytes) {
  EmulatorThread emulator;
  RawClient client(*emulator, host);
  emulator->inject({.gzipBomb = std::size_t{50} << 20});
  const auto bomb = client.send("GET", target);
  EXPECT_EQ(bomb.contentEncoding, "gzip");
  EXPECT_LT(bomb.body.size(), 100'000u);
  // The last four bytes of gzip hold the unpacked length.
  const std::string end = bomb.body.substr(bomb.body.size() - 4);
  EXPECT_EQ(end, std::string("\x00\x00\x20\x03", 4));

  emulator->inject({.delay = 20ms, .dripBytes = 64, .dripInterval = 5ms});
  const auto start = std::chrono::steady_clock::now();
  const auto dripped = client.send("GET", target);
  EXPECT_EQ(dripped.status, 401);
  EXPECT_EQ(dripped.json().at("statusCode"), 401);
  EXPECT_GE(std::chrono::steady_clock::now() - start, 20ms + 3 * 5ms);

  emulator->inject({.contentLengthError = 10, .ending = Ending::close});
  EXPECT_EQ(failure(client), make_error_code(boost::beast::http::error::partial_message));
  RawClient other(*emulator, host);
  emulator->inject({.raw = "SSH-2.0-nonsense\r\n\r\n"});
  EXPECT_EQ(failure(other), make_error_code(boost::beast::http::error::bad_version));
}

TEST(EmulatorFaults, SpoilTokensBeforeTheRequestIsServed) {
  EmulatorThread emulator;
  RawClient auth(*emulator, "auth.zolvi.example");
  const nlohmann::json client{{"client_id", "ios"}, {"client_secret", "5E0A41C7-93D2-4F18-B6A5-7C2D9E3F1048"}};
  nlohmann::json grant = client;
  grant.update({{"grant_type", "firebase"}, {"token", "firebase-alice"}});
  nlohmann::json refresh = client;
  refresh["grant_type"] = "refresh_token";
  RawClient mobile(*emulator, "mobile.zolvi.example");
  struct Case {
    EmulatorFault::Token token;
    int refreshStatus;
  };
  for (const Case& test : {Case{EmulatorFault::Token::expire, 201}, Case{EmulatorFault::Token::revoke, 400}}) {
    const nlohmann::json issued = auth.send("POST", "/token?grant_type=firebase", grant).json();
    mobile.authorize(issued.at("access_token"));
    EXPECT_EQ(mobile.send("GET", "/api/content/posts/post-bob").status, 200);
    emulator->inject({.token = test.token});
    for (int i = 0; i < 2; ++i) EXPECT_EQ(mobile.send("GET", "/api/content/posts/post-bob").status, 401);
    refresh["refresh_token"] = issued.at("refresh_token");
    EXPECT_EQ(auth.send("POST", "/token?grant_type=refresh_token", refresh).status, test.refreshStatus);
  }
}

TEST(EmulatorRecord, KeepsTheLatestRequestsAsTheyArrived) {
  EmulatorThread emulator({.requiresFixedHeaders = true, .recordedRequests = 2});
  RawClient client(*emulator, host);
  client.authorize("canary");
  for (int i = 0; i < 3; ++i) {
    const auto answer = client.send("PUT", "/main/api/settings?n=" + std::to_string(i), {{"k", i}});
    EXPECT_EQ(answer.status, 400) << "the fixed headers are missing";
  }
  const std::vector<EmulatorRequest> requests = emulator->requests();
  ASSERT_EQ(requests.size(), 2u);
  EXPECT_EQ(requests[0].target, "/main/api/settings?n=1");
  EXPECT_EQ(requests[1].path, "/settings");
  EXPECT_EQ(requests[1].body, R"({"k":2})");
  EXPECT_EQ(*requests[1].header("AUTHORIZATION"), "Bearer canary");
  EXPECT_EQ(requests[1].header("zolvi-platform"), nullptr);
}

}  // namespace
}  // namespace ZAK::Test
