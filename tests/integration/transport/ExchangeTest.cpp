#include "FullListener.hpp"
#include "TransportFixture.hpp"
#include "support/TemporaryDirectory.hpp"

#include <zvapikit/json/JSONDecoder.hpp>

#include <gmock/gmock.h>

#include <atomic>
#include <csignal>
#include <future>
#include <vector>
#include <zlib.h>

namespace ZAK::Tests {
namespace {

using Connection = FaultServer::Connection;
using Kind = HTTPError::Kind;
using std::chrono::milliseconds;
using testing::UnorderedElementsAre;

const std::string ok = answerOf("ok");
const std::string packedOnce = "Content-Encoding: gzip\r\n";

std::string gzip(const std::string& plain) {
  z_stream stream{};
  deflateInit2(&stream, 9, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY);
  std::string packed(deflateBound(&stream, plain.size()), '\0');
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(plain.data()));
  stream.avail_in = static_cast<uInt>(plain.size());
  stream.next_out = reinterpret_cast<Bytef*>(packed.data());
  stream.avail_out = static_cast<uInt>(packed.size());
  deflate(&stream, Z_FINISH);
  packed.resize(stream.total_out);
  deflateEnd(&stream);
  return packed;
}

std::string chunked(const std::string& body) {
  char size[20];
  std::snprintf(size, sizeof(size), "%zx\r\n", body.size());
  return "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n" + (size + body) + "\r\n0\r\nX-Trailer: 1\r\n\r\n";
}

class ExchangeTest : public TransportFixture {};

TEST_F(ExchangeTest, sendsWhatItWasGivenAndNothingElse) {
  struct Case {
    HTTPMethod method;
    std::string body;
    std::string lines;  ///< those after Host
  };
  const std::string bytes("a\0\r\n", 4);
  const Case cases[] = {
      {HTTPMethod::post, bytes, "Content-Length: 4\r\n"},
      {HTTPMethod::put, bytes, "Content-Length: 4\r\n"},
      {HTTPMethod::patch, bytes, "Content-Length: 4\r\n"},
      {HTTPMethod::post, "", "Content-Length: 0\r\n"},
      {HTTPMethod::delete_, bytes, "Content-Length: 4\r\n"},
      {HTTPMethod::put, "", "Content-Length: 0\r\n"},
      {HTTPMethod::delete_, "", ""},
      {HTTPMethod::get, "", ""},
  };
  std::string received;
  const FaultServer server([&](Connection& client) {
    if (!client.handshake()) return;
    received = client.readRequest();
    client.send(ok);
  });
  for (const Case& given : cases) {
    auto request = get(server.url("/a/../b/./c?x=%2F&y"));
    request.method = given.method;
    request.headers.set({"X-Empty", ""});
    request.headers.set({"Accept-Encoding", "gzip"});
    if (!given.body.empty()) request.body = HTTPBody::data(given.body);
    EXPECT_EQ(told(perform(std::move(request)).response), "ok");
    EXPECT_EQ(received, std::string(rawValue(given.method)) +
                            " /a/../b/./c?x=%2F&y HTTP/1.1\r\nHost: localhost:" + std::to_string(server.port()) +
                            "\r\nX-Empty:\r\nAccept-Encoding: gzip\r\n" + given.lines + "\r\n" + given.body);
  }
}

TEST_F(ExchangeTest, answersEndAsTheyShould) {
  const std::string packed = gzip("plain text"), large(5000, 'x');
  const auto encoded = [](const char* encoding) { return std::string("Content-Encoding: ") + encoding + "\r\n"; };
  struct Case {
    const char* name;
    std::string answer;
    std::string body;
    std::optional<Kind> error = {};
    int status = 200;
  };
  const Case cases[] = {
      {"no body", "HTTP/1.1 204 No Content\r\n\r\n", "", {}, 204},
      {"error status", answerOf("no", "", "500 Oops"), "no", {}, 500},
      {"large chunk", chunked(large), large},
      {"large when unpacked", answerOf(gzip(large), encoded("gzip")), large},
      {"chunks and trailer", chunked("in chunks"), "in chunks"},
      {"interim answers", "HTTP/1.1 103 Early\r\nX-Trailer: 1\r\n\r\n" + ok, "ok"},
      {"gzip", answerOf(packed, encoded("gzip")), "plain text"},
      {"broken gzip", answerOf("not packed", encoded("gzip")), "", Kind::invalidAnswer},
      {"gzip twice", answerOf(gzip(packed), encoded("gzip, gzip")), "plain text"},
      {"gzip twice, told once", answerOf(gzip(packed), encoded("gzip")), packed},
      {"gzip six times", answerOf(packed, encoded("gzip,gzip,gzip,gzip,gzip,gzip")), "", Kind::invalidAnswer},
      {"gzip as br", answerOf(packed, encoded("br")), "", Kind::invalidAnswer},
      {"unknown encoding", answerOf(packed, encoded("rot13")), "", Kind::invalidAnswer},
  };
  for (const Case& given : cases) {
    SCOPED_TRACE(given.name);
    const FaultServer server(FaultServer::answering(given.answer));
    const auto result = perform(get(server.url()));
    EXPECT_EQ(result.response.statusCode.code(), given.status);
    EXPECT_EQ(result.response.body, given.body);
    const std::size_t spare = JSONBody(result.response.body).padding();
    EXPECT_TRUE(given.body.empty() || given.error || spare >= JSONBody::wantedPadding)
        << spare;  // so that the decoder needs no copy
    EXPECT_EQ(errorKind(result.response), given.error);
    EXPECT_TRUE(result.answerStarted);
    EXPECT_FALSE(result.response.headers.value("X-Trailer"));
  }
}

TEST_F(ExchangeTest, bodiesAreBoundAfterDecoding) {
  auto small = options();
  small.maximumBodySize = 1 << 20;
  const std::string fits(small.maximumBodySize, 'x');
  const std::string bomb = gzip(std::string(50 << 20, 'x'));
  ASSERT_LT(bomb.size(), small.maximumBodySize / 10);
  const std::pair<std::string, bool> cases[] = {
      {answerOf(fits), true},
      {answerOf(fits + 'x'), false},
      {chunked(fits), true},
      {chunked(fits + 'x'), false},
      {answerOf(bomb, packedOnce), false},
      {answerOf(gzip(bomb), "Content-Encoding: gzip, gzip\r\n"), false},
  };
  for (const auto& [answer, works] : cases) {
    const FaultServer server(FaultServer::answering(answer));
    const auto response = perform(get(server.url()), small).response;
    EXPECT_EQ(errorKind(response), works ? std::nullopt : std::optional(Kind::answerTooLarge)) << answer.substr(0, 80);
    EXPECT_TRUE(works ? response.body == fits : response.body.size() <= fits.size());
  }
}

TEST_F(ExchangeTest, connectionsAreKeptWhileTheContextRests) {
  const FaultServer server(FaultServer::answering(ok));
  const auto shared = transport();
  const auto begin = std::chrono::steady_clock::now();
  const auto first = perform(shared, get(server.url())).response.metrics;
  const auto second = perform(shared, get(server.url())).response.metrics;
  EXPECT_LT(std::chrono::steady_clock::now() - begin, milliseconds(900)) << "left-over timers kept the context running";
  EXPECT_EQ(server.connections(), 1);
  EXPECT_EQ(server.requests(), 2);
  EXPECT_FALSE(first.reusedConnection);
  EXPECT_GT(first.connect.count(), 0);
  EXPECT_GT(first.secureConnect, first.connect);
  EXPECT_GT(first.firstByte, first.secureConnect);
  EXPECT_GE(first.total, first.firstByte);
  EXPECT_TRUE(second.reusedConnection);
  EXPECT_EQ(second.secureConnect.count(), 0);
  EXPECT_EQ(second.protocol, "HTTP/1.1");
  EXPECT_EQ(second.bytesReceived, 2U);
}

TEST_F(ExchangeTest, aConnectionThatWasClosedMeanwhileIsReplaced) {
  for (const auto end : {&Connection::finish, &Connection::cut}) {
    std::atomic<int> closed = 0;
    std::promise<void> others;
    const FaultServer server([&](Connection& client) {
      if (!client.handshake() || client.readRequest().empty()) return;
      if (client.index() == 0) {
        others.get_future().wait();
        return client.send(ok);
      }
      client.send(ok);
      (client.*end)();
      ++closed;
    });
    const auto shared = transport();
    const Call busy = start(shared->perform(get(server.url())));
    ASSERT_TRUE(runUntil([&] { return server.requests() == 1; }));
    for (const auto method : {HTTPMethod::get, HTTPMethod::post, HTTPMethod::get, HTTPMethod::patch}) {
      auto request = get(server.url());
      request.method = method;
      const Call call = start(shared->perform(request));
      EXPECT_TRUE(runUntil([&] { return call->done() && closed == server.connections() - 1; }));
      EXPECT_EQ(told(call->result().response), "ok");
    }
    others.set_value();
    runner.drain();
    EXPECT_EQ(told(busy->result().response), "ok") << "a connection in use is left alone";
    EXPECT_EQ(server.connections(), 5);
    EXPECT_EQ(server.requests(), 5);
  }
}

TEST_F(ExchangeTest, onlyWhatMayBeRepeatedIsSentAgainWhenAKeptConnectionDies) {
  const TemporaryDirectory files;
  const HTTPBody bodies[] = {HTTPBody(), HTTPBody::data("a body"), HTTPBody::file(files.write("file", "a file"))};
  for (const auto end : {&Connection::finish, &Connection::cut, &Connection::reset}) {
    for (const auto method :
         {HTTPMethod::get, HTTPMethod::put, HTTPMethod::delete_, HTTPMethod::post, HTTPMethod::patch}) {
      for (const HTTPBody& body : bodies) {
        SCOPED_TRACE(std::string(rawValue(method)) + ' ' + body.bytes());
        const FaultServer server([&](Connection& client) {
          if (!client.handshake() || client.readRequest().empty()) return;
          client.send(ok);
          if (client.index() == 0 && !client.readRequest().empty()) (client.*end)();
        });
        const auto shared = transport();
        EXPECT_EQ(told(perform(shared, get(server.url())).response), "ok");
        auto request = get(server.url());
        request.method = method;
        request.body = body;
        const auto result = perform(shared, request);
        const bool repeated = isIdempotent(method);
        EXPECT_EQ(server.requests(), repeated ? 3 : 2);
        EXPECT_EQ(told(result.response), repeated ? "ok" : "connection lost");
        EXPECT_EQ(errorKind(result.response), repeated ? std::nullopt : std::optional(Kind::connectionLost));
        EXPECT_EQ(result.answerStarted, repeated);
      }
    }
  }
}

std::string timedOut(const FaultServer& server) {
  return "connecting timed out: localhost:" + std::to_string(server.port());
}

TEST_F(ExchangeTest, callsWaitForTheirTurnBeyondTheConnectTimeout) {
  for (const int connections : {1, 2}) {
    const FaultServer server([](Connection& client) {
      if (client.index() == 1) client.stall();
      if (!client.handshake()) return;
      while (!client.readRequest().empty()) client.drip(ok, milliseconds(18));
    });
    auto narrow = options();
    narrow.connectionsPerHost = connections;
    narrow.connectTimeout = milliseconds(300);
    const auto shared = transport(narrow);
    std::vector<Call> calls;
    for (int i = 0; i < 3; ++i) calls.push_back(start(shared->perform(get(server.url()))));
    runner.drain();
    std::vector<std::string> ends;
    for (const Call& call : calls) ends.push_back(told(call->result().response));
    EXPECT_THAT(ends, UnorderedElementsAre("ok", connections == 1 ? "ok" : timedOut(server), "ok"))
        << "of the second connection nothing came; who did not ask for it is served by the others";
  }
}

TEST_F(ExchangeTest, whatDoesNotMoveTimesOut) {
  for (const bool connects : {false, true}) {
    const FaultServer server([=](Connection& client) {
      if (connects && client.handshake()) client.readRequest();
      client.stall();
    });
    auto request = get(server.url());
    request.timeout = std::chrono::seconds(1);
    const auto begin = std::chrono::steady_clock::now();
    const auto shared = transport();
    std::vector<Call> calls;
    for (int i = 0; i < 6; ++i) calls.push_back(start(shared->perform(request)));
    runner.drain();
    for (const Call& call : calls) {
      const auto response = call->result().response;
      EXPECT_EQ(errorKind(response), connects ? Kind::timedOut : Kind::cannotConnect);
      EXPECT_EQ(told(response), connects ? "timed out" : timedOut(server));
    }
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(4)) << "each waited for the one before";
  }
}

TEST_F(ExchangeTest, theNextAddressIsTriedWhenOneIsSilent) {
  // The second attempt gets the number of the first one's socket, of which libcurl says nothing.
  const FaultServer server(FaultServer::answering(ok));
  const FullListener silent("127.0.0.2", server.port());
  auto hasty = options();
  hasty.connectTimeout = std::chrono::seconds(2);
  EXPECT_EQ(told(perform(get(server.url("/", "two.test")), hasty).response), "ok");
}

TEST_F(ExchangeTest, aResetDuringAnUploadRaisesNoSignal) {
  ASSERT_EQ(std::signal(SIGPIPE, SIG_DFL), SIG_DFL) << "something in the program hides what is tested";
  const FaultServer server([](Connection& client) {
    if (client.handshake()) client.reset();
  });
  auto request = get(server.url());
  request.method = HTTPMethod::put;
  request.body = HTTPBody::data(std::string(8 << 20, 'x'));
  EXPECT_EQ(errorKind(perform(request).response), Kind::connectionLost);
}

TEST_F(ExchangeTest, connectToLeadsElsewhereUnderTheSameName) {
  EXPECT_EQ(told(perform(get("https://nowhere.invalid/")).response), "could not resolve host: nowhere.invalid");
  const FaultServer server(FaultServer::answering(ok));
  auto led = options();
  led.connectTo.emplace_back("nowhere.invalid", 443, "localhost", server.port());
  led.connectTo.emplace_back("", 0, "127.0.0.1", server.port());
  const auto shared = transport(led);
  EXPECT_EQ(told(perform(shared, get("https://localhost/")).response), "ok");
  EXPECT_EQ(told(perform(shared, get("https://nowhere.invalid/")).response), "the certificate is not for this host");
}

}  // namespace
}  // namespace ZAK::Tests
