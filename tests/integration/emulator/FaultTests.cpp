#include "RawClient.hpp"

#include <boost/asio/error.hpp>
#include <boost/asio/ssl/error.hpp>
#include <boost/beast/http/error.hpp>

namespace ZAK::Tests {
namespace {

using namespace std::chrono_literals;
using Ending = EmulatorFault::Ending;

const std::string reading = "GET /main/api/content/posts/p1";

boost::system::error_code failure(RawClient& client) {
  try {
    client.send(reading);
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
  RawClient client(*emulator, sandboxMobile);
  EXPECT_EQ(client.send("DELETE /main/api/content/posts").status, 401);
  EXPECT_EQ(client.send("GET /main/api/content/posts/p2").status, 503);
  EXPECT_EQ(client.send(reading).body, "busy");
  for (int i = 0; i < 3; ++i) EXPECT_EQ(client.send(reading).status, 418);
  EXPECT_EQ(emulator->timesMet(busy), 2u);
  EXPECT_EQ(emulator->timesMet(later), 3u);
  emulator->clearFaults();
  EXPECT_EQ(client.send(reading).status, 401);

  const EmulatorCounts counts = emulator->counts();
  EXPECT_EQ(counts.of("GET /content/posts/{postId}"), 6u);
  EXPECT_EQ(counts.faults, 5u);
  EXPECT_EQ(counts.connections, 1u) << "the connection was kept";
}

TEST(EmulatorFaults, EndConnectionsInTheWayAsked) {
  EmulatorThread emulator;
  const std::pair<Ending, boost::system::error_code> cases[] = {
      {Ending::close, boost::asio::error::eof},
      {Ending::drop, boost::asio::ssl::error::stream_truncated},
      {Ending::reset, boost::asio::error::connection_reset},
  };
  for (const auto& [ending, seen] : cases) {
    emulator->inject({.cutAfter = 30, .ending = ending});
    RawClient client(*emulator, sandboxMobile);
    EXPECT_EQ(client.sendForBytes(reading, 1000), "HTTP/1.1 401 Unauthorized\r\nCon");
    EXPECT_EQ(client.ending(), seen);
    emulator->inject({.ending = ending});
    RawClient other(*emulator, sandboxMobile);
    EXPECT_EQ(other.send(reading).status, 401) << "the answer itself is whole";
    EXPECT_TRUE(failure(other)) << "but the connection is gone";
  }
}

TEST(EmulatorFaults, SpoilTheAnswersBytes) {
  EmulatorThread emulator;
  RawClient client(*emulator, sandboxMobile);
  emulator->inject({.gzipBomb = std::size_t{50} << 20});
  const auto bomb = client.send(reading);
  EXPECT_EQ(bomb.contentEncoding, "gzip");
  EXPECT_LT(bomb.body.size(), 100'000u);
  EXPECT_TRUE(bomb.body.ends_with(std::string_view("\x00\x00\x20\x03", 4))) << "the unpacked length";

  emulator->inject({.delay = 20ms, .dripBytes = 64, .dripInterval = 5ms});
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(client.send(reading).json().at("statusCode"), 401);
  EXPECT_GE(std::chrono::steady_clock::now() - start, 20ms + 3 * 5ms);

  emulator->inject({.contentLengthError = 10, .ending = Ending::close});
  EXPECT_EQ(failure(client), make_error_code(boost::beast::http::error::partial_message));
  RawClient other(*emulator, sandboxMobile);
  emulator->inject({.raw = "SSH-2.0-nonsense\r\n\r\n"});
  EXPECT_EQ(failure(other), make_error_code(boost::beast::http::error::bad_version));
}

TEST(EmulatorRecord, KeepsTheLatestRequestsAsTheyArrived) {
  EmulatorThread emulator({.requiresFixedHeaders = true, .recordedRequests = 2});
  RawClient client(*emulator, sandboxMobile, "canary");
  for (const std::string n : {"0", "1", "2"}) {
    EXPECT_EQ(client.send("PUT /main/api/settings?n=" + n, R"({"k":2})").status, 400) << "fixed headers are missing";
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
}  // namespace ZAK::Tests
