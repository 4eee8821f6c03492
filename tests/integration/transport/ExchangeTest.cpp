#include "FullListener.hpp"
#include "TransportFixture.hpp"
#include "support/TemporaryDirectory.hpp"

#include <zvapikit/json/JSONDecoder.hpp>

#include <csignal>
#include <thread>
#include <vector>
#include <zlib.h>

namespace ZAK::Tests {
namespace {

using Connection = FaultServer::Connection;
using Kind = HTTPError::Kind;
using std::chrono::milliseconds;

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
      {"folded header", answerOf("ok", "X-Folded: one\r\n\t two\r\nx-folded: three\r\n"), "ok"},
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
    EXPECT_EQ(result.response.headers.value("X-Folded").value_or("none"),
              given.name == std::string("folded header") ? "one two, three" : "none");
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

TEST_F(ExchangeTest, callsWaitForTheirTurnBeyondTheConnectTimeout) {
  const FaultServer server([](Connection& client) {
    if (!client.handshake()) return;
    while (!client.readRequest().empty()) {
      std::this_thread::sleep_for(milliseconds(600));
      client.send(ok);
    }
  });
  auto narrow = options();
  narrow.connectionsPerHost = 1;
  narrow.connectTimeout = milliseconds(1000);
  const auto shared = transport(narrow);
  std::vector<Call> calls;
  for (int i = 0; i < 4; ++i) calls.push_back(start(shared->perform(get(server.url()))));
  runner.drain();
  for (const Call& call : calls) EXPECT_EQ(told(call->result().response), "ok");
}

TEST_F(ExchangeTest, theNextAddressIsTriedWhenOneIsSilent) {
  // The second attempt gets the number of the first one's socket, of which libcurl says nothing.
  const FaultServer server(FaultServer::answering(ok));
  const FullListener silent("127.0.0.2", server.port());
  auto hasty = options();
  hasty.connectTimeout = std::chrono::seconds(2);
  EXPECT_EQ(told(perform(get(server.url("/", "two.test")), hasty).response), "ok");
}

// What the proxy is asked must not be taken for a first sending of a request that may be sent once only.
TEST_F(ExchangeTest, aProxyCarriesRequestsThatMustNotBeRepeated) {
  const FaultServer proxy([](Connection& client) {
    client.greet("HTTP/1.1 200 OK\r\n\r\n");
    if (client.handshake() && !client.readRequest().empty()) client.send(ok);
  });
  auto through = options();
  through.proxy = "http://127.0.0.1:" + std::to_string(proxy.port());
  auto request = get("https://localhost:1/");
  request.method = HTTPMethod::post;
  EXPECT_EQ(told(perform(request, through).response), "ok");
  EXPECT_EQ(proxy.requests(), 1);
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

}  // namespace
}  // namespace ZAK::Tests
