#include "FullListener.hpp"
#include "TransportFixture.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <string>
#include <vector>
#include <zlib.h>

namespace ZAK::test {
namespace {

using Kind = HTTPError::Kind;
using std::chrono::milliseconds;
using testing::UnorderedElementsAre;

const std::string ok = "HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok";

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

std::string withLength(const std::string& body, const std::string& headers = "") {
  return "HTTP/1.1 200 OK\r\n" + headers + "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

std::string chunked(const std::string& body) {
  char size[20];
  std::snprintf(size, sizeof(size), "%zx\r\n", body.size());
  return "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n" + (size + body) + "\r\n0\r\nX-Trailer: 1\r\n\r\n";
}

class ExchangeTest : public TransportFixture {
 protected:
  /// The request as it reached the server.
  std::string sent(TransferRequest request) {
    std::string received;
    const FaultServer server(authority().issue(), [&](FaultServer::Connection& client) {
      if (!client.handshake()) return;
      received = client.readRequest();
      client.send(ok);
    });
    request.url = server.url(request.url);
    EXPECT_EQ(perform(std::move(request)).response.statusCode.code(), 200);
    return received;
  }
};

/// The request line and the headers, but Host.
std::vector<std::string> head(const std::string& request) {
  std::vector<std::string> lines;
  for (std::size_t at = 0; request.compare(at, 2, "\r\n") != 0;) {
    const auto end = request.find("\r\n", at);
    lines.push_back(request.substr(at, end - at));
    at = end + 2;
  }
  std::erase_if(lines, [](const auto& line) { return line.starts_with("Host:"); });
  return lines;
}

TEST_F(ExchangeTest, sendsWhatItWasGivenAndNothingElse) {
  auto request = get("/a/../b/./c?x=%2F&y");
  request.headers.set({"X-Empty", ""});
  request.headers.set({"Accept-Encoding", "gzip"});
  EXPECT_THAT(head(sent(request)),
              UnorderedElementsAre("GET /a/../b/./c?x=%2F&y HTTP/1.1", "X-Empty:", "Accept-Encoding: gzip"));

  const struct {
    HTTPMethod method;
    bool hasBody;
    std::vector<std::string> lines;
  } cases[] = {
      {HTTPMethod::post, true, {"POST / HTTP/1.1", "Content-Length: 4"}},
      {HTTPMethod::put, true, {"PUT / HTTP/1.1", "Content-Length: 4"}},
      {HTTPMethod::patch, true, {"PATCH / HTTP/1.1", "Content-Length: 4"}},
      {HTTPMethod::delete_, true, {"DELETE / HTTP/1.1", "Content-Length: 4"}},
      {HTTPMethod::post, false, {"POST / HTTP/1.1", "Content-Length: 0"}},
      {HTTPMethod::put, false, {"PUT / HTTP/1.1", "Content-Length: 0"}},
      {HTTPMethod::delete_, false, {"DELETE / HTTP/1.1"}},
      {HTTPMethod::get, false, {"GET / HTTP/1.1"}},
  };
  for (const auto& given : cases) {
    auto bare = get("/");
    bare.method = given.method;
    if (given.hasBody) bare.body = HTTPBody::data(std::string("a\0\r\n", 4));
    const auto received = sent(bare);
    EXPECT_THAT(head(received), testing::UnorderedElementsAreArray(given.lines));
    EXPECT_TRUE(received.ends_with(given.hasBody ? std::string("\r\n\r\na\0\r\n", 8) : "\r\n\r\n")) << received;
  }
}

TEST_F(ExchangeTest, largeUploadsDoNotWaitToBeAskedFor) {
  auto request = get("/");
  request.method = HTTPMethod::put;
  request.body = HTTPBody::data(std::string(3 << 20, 'x'));
  const auto received = sent(request);
  EXPECT_THAT(head(received), UnorderedElementsAre("PUT / HTTP/1.1", "Content-Length: 3145728"));
  EXPECT_TRUE(received.ends_with(request.body.bytes()));
}

TEST_F(ExchangeTest, answersEndAsTheyShould) {
  const std::string packed = gzip("plain text");
  const std::string encoded = "Content-Encoding: gzip\r\n";
  const std::string half = "HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n12345";
  const auto sendThen = [](std::string answer, void (FaultServer::Connection::*end)()) -> FaultServer::Script {
    return [=](FaultServer::Connection& client) {
      if (!client.handshake() || client.readRequest().empty()) return;
      client.send(answer);
      (client.*end)();
    };
  };
  using Connection = FaultServer::Connection;
  const struct {
    const char* name;
    FaultServer::Script script;
    int status;
    std::string body;
    std::optional<Kind> error;
    bool started = true;
  } cases[] = {
      {"no body", FaultServer::answering("HTTP/1.1 204 No Content\r\n\r\n"), 204, "", {}},
      {"error status", FaultServer::answering("HTTP/1.1 500 Oops\r\nContent-Length: 2\r\n\r\nno"), 500, "no", {}},
      {"chunks and trailer", FaultServer::answering(chunked("in chunks")), 200, "in chunks", {}},
      {"interim answers", FaultServer::answering("HTTP/1.1 103 Early\r\nX-Trailer: 1\r\n\r\n" + ok), 200, "ok", {}},
      {"gzip", FaultServer::answering(withLength(packed, encoded)), 200, "plain text", {}},
      {"drip",
       [](Connection& client) {
         if (client.handshake() && !client.readRequest().empty()) client.drip(ok, milliseconds(1));
       },
       200,
       "ok",
       {}},
      {"ends with the connection", sendThen("HTTP/1.1 200 OK\r\n\r\nall", &Connection::finish), 200, "all", {}},
      {"broken gzip", FaultServer::answering(withLength("not packed", encoded)), 200, "", Kind::invalidAnswer},
      {"gzip twice",
       FaultServer::answering(withLength(gzip(packed), "Content-Encoding: gzip, gzip\r\n")),
       200,
       "plain text",
       {}},
      {"gzip twice, told once", FaultServer::answering(withLength(gzip(packed), encoded)), 200, packed, {}},
      {"gzip six times",
       FaultServer::answering(withLength(packed, "Content-Encoding: gzip,gzip,gzip,gzip,gzip,gzip\r\n")), 200, "",
       Kind::invalidAnswer},
      {"gzip as br", FaultServer::answering(withLength(packed, "Content-Encoding: br\r\n")), 200, "",
       Kind::invalidAnswer},
      {"unknown encoding", FaultServer::answering(withLength(packed, "Content-Encoding: rot13\r\n")), 200, "",
       Kind::invalidAnswer},
      {"length cut short", sendThen(half, &Connection::finish), 200, "12345", Kind::connectionLost},
      {"length cut hard", sendThen(half, &Connection::cut), 200, "12345", Kind::connectionLost},
      {"chunks cut short", sendThen(chunked("12345").substr(0, 55), &Connection::finish), 200, "12345",
       Kind::connectionLost},
      {"head cut", sendThen("HTTP/1.1 200 OK\r\nX: 1\r\nY", &Connection::finish), 200, "", Kind::connectionLost},
      {"no answer", sendThen("", &Connection::finish), 0, "", Kind::connectionLost, false},
      {"reset", sendThen("", &Connection::reset), 0, "", Kind::connectionLost, false},
      {"not HTTP", sendThen("SSH-2.0-x\r\nand more\r\n\r\n", &Connection::finish), 0, "", Kind::invalidAnswer},
      {"no TLS", [](Connection& client) { client.cut(); }, 0, "", Kind::secureConnectionFailed, false},
  };
  for (const auto& given : cases) {
    SCOPED_TRACE(given.name);
    const FaultServer server(authority().issue(), given.script);
    const auto result = perform(get(server.url()));
    EXPECT_EQ(result.response.statusCode.code(), given.status);
    EXPECT_EQ(result.response.body, given.body);
    EXPECT_EQ(result.response.error ? std::optional(result.response.error->kind()) : std::nullopt, given.error);
    EXPECT_EQ(result.answerStarted, given.started);
    EXPECT_FALSE(result.response.headers.value("X-Trailer"));
  }
}

TEST_F(ExchangeTest, bodiesAreBoundAfterDecoding) {
  auto small = options();
  small.maximumBodySize = 1 << 20;
  const std::string fits(small.maximumBodySize, 'x');
  const std::string bomb = gzip(std::string(50 << 20, 'x'));
  ASSERT_LT(bomb.size(), small.maximumBodySize / 10);
  const struct {
    std::string answer;
    bool tooLarge;
  } cases[] = {
      {withLength(fits), false},
      {withLength(fits + 'x'), true},
      {chunked(fits), false},
      {chunked(fits + 'x'), true},
      {withLength(bomb, "Content-Encoding: gzip\r\n"), true},
      {withLength(gzip(bomb), "Content-Encoding: gzip, gzip\r\n"), true},
  };
  for (const auto& [answer, tooLarge] : cases) {
    const FaultServer server(authority().issue(), FaultServer::answering(answer));
    const auto result = perform(CurlTransport::create(io->get_executor(), small), get(server.url()));
    ASSERT_EQ(result.response.error.has_value(), tooLarge) << answer.substr(0, 80);
    EXPECT_LE(result.response.body.size(), small.maximumBodySize);
    if (tooLarge) {
      EXPECT_EQ(result.response.error->kind(), Kind::answerTooLarge);
    } else {
      EXPECT_EQ(result.response.body, fits);
    }
  }
}

TEST_F(ExchangeTest, connectionsAreKeptWhileTheContextRests) {
  const FaultServer server(authority().issue(), FaultServer::answering(ok));
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
  for (const auto end : {&FaultServer::Connection::finish, &FaultServer::Connection::cut}) {
    std::atomic<int> closed = 0;
    const FaultServer server(authority().issue(), [&](FaultServer::Connection& client) {
      if (!client.handshake() || client.readRequest().empty()) return;
      client.send(ok);
      (client.*end)();
      ++closed;
    });
    const auto shared = transport();
    for (const auto method : {HTTPMethod::get, HTTPMethod::post, HTTPMethod::get, HTTPMethod::patch}) {
      auto request = get(server.url());
      request.method = method;
      EXPECT_EQ(perform(shared, request).response.body, "ok");
      ASSERT_TRUE(runUntil([&] { return closed == server.connections(); }));
    }
    EXPECT_EQ(server.connections(), 4);
    EXPECT_EQ(server.requests(), 4);
  }
}

TEST_F(ExchangeTest, onlyWhatMayBeRepeatedIsSentAgainWhenAKeptConnectionDies) {
  using Connection = FaultServer::Connection;
  for (const auto end : {&Connection::finish, &Connection::cut, &Connection::reset}) {
    for (const auto method :
         {HTTPMethod::get, HTTPMethod::put, HTTPMethod::delete_, HTTPMethod::post, HTTPMethod::patch}) {
      for (const std::string body : {"", "a body"}) {
        SCOPED_TRACE(std::string(rawValue(method)) + ' ' + body);
        const FaultServer server(authority().issue(), [&](Connection& client) {
          if (!client.handshake() || client.readRequest().empty()) return;
          client.send(ok);
          if (client.index() == 0 && !client.readRequest().empty()) (client.*end)();
        });
        const auto shared = transport();
        EXPECT_EQ(perform(shared, get(server.url())).response.body, "ok");
        auto request = get(server.url());
        request.method = method;
        if (!body.empty()) request.body = HTTPBody::data(body);
        const auto result = perform(shared, request);
        EXPECT_EQ(server.requests(), isIdempotent(method) ? 3 : 2);
        EXPECT_EQ(result.response.body, isIdempotent(method) ? "ok" : "");
        ASSERT_NE(result.response.error.has_value(), isIdempotent(method));
        if (!result.response.error) continue;
        EXPECT_EQ(result.response.error->kind(), Kind::connectionLost);
        EXPECT_EQ(result.response.error->description(), "connection lost");
        EXPECT_FALSE(result.answerStarted);
      }
    }
  }
}

TEST_F(ExchangeTest, callsWaitForTheirTurnBeyondTheConnectTimeout) {
  const FaultServer server(authority().issue(), [](FaultServer::Connection& client) {
    if (!client.handshake()) return;
    while (!client.readRequest().empty()) client.drip(ok, milliseconds(18));
  });
  auto narrow = options();
  narrow.connectionsPerHost = 1;
  narrow.connectTimeout = milliseconds(300);
  const auto shared = CurlTransport::create(io->get_executor(), narrow);
  std::vector<std::shared_ptr<Outcome>> outcomes;
  for (int i = 0; i < 3; ++i) outcomes.push_back(start(shared->perform(get(server.url()))));
  ASSERT_TRUE(runDry());
  for (const auto& outcome : outcomes) {
    ASSERT_TRUE(outcome->result);
    EXPECT_EQ(outcome->result->response.body, "ok")
        << outcome->result->response.error.value_or(HTTPError(Kind::other, {}, "")).description();
  }
  EXPECT_EQ(server.connections(), 1);
}

TEST_F(ExchangeTest, whatDoesNotMoveTimesOut) {
  const struct {
    FaultServer::Script script;
    Kind kind;
    std::string_view text;
  } cases[] = {
      {[](FaultServer::Connection& client) { client.stall(); }, Kind::cannotConnect, "connecting timed out"},
      {[](FaultServer::Connection& client) {
         if (client.handshake()) client.readRequest();
         client.stall();
       },
       Kind::timedOut, "timed out"},
      {[](FaultServer::Connection& client) {
         if (client.handshake()) client.readRequest();
         client.send("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n12345");
         client.stall();
       },
       Kind::timedOut, "timed out"},
  };
  for (const auto& [script, kind, text] : cases) {
    const FaultServer server(authority().issue(), script);
    auto request = get(server.url());
    request.timeout = std::chrono::seconds(1);
    const auto begin = std::chrono::steady_clock::now();
    const auto result = perform(request);
    ASSERT_TRUE(result.response.error);
    EXPECT_EQ(result.response.error->kind(), kind);
    EXPECT_EQ(result.response.error->description(), text);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(8));
  }
}

TEST_F(ExchangeTest, hostsThatAreNotThere) {
  const auto refused = perform(get("https://127.0.0.1:1/"));
  ASSERT_TRUE(refused.response.error);
  EXPECT_EQ(refused.response.error->description(), "connection refused");
  const auto unknown = perform(get("https://nowhere.invalid/"));
  ASSERT_TRUE(unknown.response.error);
  EXPECT_EQ(unknown.response.error->description(), "could not resolve host");
}

TEST_F(ExchangeTest, theNextAddressIsTriedWhenOneIsSilent) {
  // The second attempt gets the number of the first one's socket, of which libcurl says nothing.
  const FaultServer server(authority().issue(), FaultServer::answering(ok));
  const FullListener silent("127.0.0.2", server.port());
  auto hasty = options();
  hasty.connectTimeout = std::chrono::seconds(2);
  const auto result = perform(CurlTransport::create(io->get_executor(), hasty), get(server.url("/", "two.test")));
  EXPECT_EQ(result.response.body, "ok") << result.response.error.value_or(HTTPError(Kind::other, {}, "")).what();
}

TEST_F(ExchangeTest, aResetDuringAnUploadRaisesNoSignal) {
  ASSERT_EQ(std::signal(SIGPIPE, SIG_DFL), SIG_DFL) << "something in the program hides what is tested";
  const FaultServer server(authority().issue(), [](FaultServer::Connection& client) {
    if (client.handshake()) client.reset();
  });
  auto request = get(server.url());
  request.method = HTTPMethod::put;
  request.body = HTTPBody::data(std::string(8 << 20, 'x'));
  const auto result = perform(request);
  ASSERT_TRUE(result.response.error);
  EXPECT_EQ(result.response.error->kind(), Kind::connectionLost);
}

TEST_F(ExchangeTest, connectToLeadsElsewhereUnderTheSameName) {
  const FaultServer server(authority().issue(), FaultServer::answering(ok));
  auto led = options();
  led.connectTo.emplace_back("nowhere.invalid", 443, "localhost", server.port());
  led.connectTo.emplace_back("", 0, "127.0.0.1", server.port());
  const auto shared = CurlTransport::create(io->get_executor(), led);
  EXPECT_EQ(perform(shared, get("https://localhost/")).response.body, "ok");
  const auto misnamed = perform(shared, get("https://nowhere.invalid/"));
  ASSERT_TRUE(misnamed.response.error);
  EXPECT_EQ(misnamed.response.error->description(), "the certificate is not for this host");
}

}  // namespace
}  // namespace ZAK::test
