#include "integration/transport/TransportFixture.hpp"

#include <zvapikit/http/HTTPClient.hpp>
#include <zvapikit/http/ManualClock.hpp>
#include <zvapikit/json/JSONDecoder.hpp>
#include <zvapikit/model/CreatePostDto.hpp>

#include <gmock/gmock.h>

#include <future>
#include <mutex>
#include <vector>

namespace ZAK::Tests {
namespace {

using namespace std::string_literals;
using Connection = FaultServer::Connection;
using Kind = HTTPError::Kind;

/// How far an exchange comes before it goes wrong.
enum class Step {
  accepted,  ///< the connection stands, and not a byte was read
  greeted,   ///< the client has begun the handshake; the fault's bytes answer it, below TLS
  secured,   ///< the handshake is over, and nothing of the request was read
  asked      ///< the request has come; the fault's bytes answer it
};

struct NetworkFault {
  Step step;
  void (Connection::*end)();
  std::string bytes{};
};

const std::string body = R"({"id": "post-bob", "caption": "by the sea"})";

/// How the end of an answer is told.
enum class Framing { length, chunks, connection };

/// An answer of 200, after which the connection is not used again.
std::string answered(Framing framing) {
  const std::string head = "HTTP/1.1 200 OK\r\nConnection: close\r\n";
  if (framing == Framing::connection) return head + "\r\n" + body;
  if (framing == Framing::length) return head + "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
  std::string answer = head + "Transfer-Encoding: chunked\r\n\r\n";
  constexpr std::size_t chunk = 15;
  for (std::size_t at = 0; at < body.size(); at += chunk) {
    const std::string part = body.substr(at, chunk);
    answer.append(1, "0123456789abcdef"[part.size()]).append("\r\n").append(part).append("\r\n");
  }
  return answer + "0\r\n\r\n";
}

NetworkFault answering(std::string bytes) { return {Step::asked, &Connection::finish, std::move(bytes)}; }

constexpr HTTPMethod methods[] = {HTTPMethod::get, HTTPMethod::post, HTTPMethod::put};

/// One exchange, to be made again and again with a server that does to it what the fault says. It may be repeated
/// once, but for a POST.
class Replay {
 public:
  explicit Replay(HTTPMethod method, std::chrono::milliseconds patience = std::chrono::seconds(20),
                  bool refuses = false)
      : method_(method), patience_(patience) {
    TransportOptions options;
    options.caFile = authority().file();
    options.stallTimeout = patience;
    if (refuses) options.connectTo.emplace_back("localhost", server_.port(), "127.0.0.1", 1);
    client_ = HTTPClient::create(CurlTransport::create(runner_.executor(), options), {},
                                 std::make_shared<ManualClock>(ManualClock::autoAdvance));
    EXPECT_EQ(isHealthy(), !refuses);
  }

  HTTPResponse run(NetworkFault fault) {
    std::unique_lock lock(mutex_);
    fault_ = std::move(fault);
    lock.unlock();
    met = 0;
    HTTPRequest request(method_, server_.url("/exchange"));
    request.maxRetries = 1;
    request.headers.set(HTTPHeaders::Element::bearer("canary"));
    if (method_ == HTTPMethod::put) request.body = HTTPBody::data(std::string(200'000, 'x'));
    const auto begin = std::chrono::steady_clock::now();
    HTTPResponse response = runner_.run(client_->fetch(std::move(request)));
    // Progress is measured over some seconds.
    EXPECT_LT(std::chrono::steady_clock::now() - begin, attempts() * (patience_ + std::chrono::seconds(10)));
    EXPECT_EQ(told(response).find("canary"), std::string::npos);
    return response;
  }
  /// Whether the exchange goes well with a server that answers as it should.
  bool isHealthy() { return run(answering(answered(Framing::length))).body == body; }

  /// How often the request is sent while there is nothing of an answer.
  [[nodiscard]] int attempts() const { return method_ == HTTPMethod::post ? 1 : 2; }

  /// How often the server met the latest exchange.
  std::atomic<int> met = 0;

 private:
  void serve(Connection& connection) {
    std::unique_lock lock(mutex_);
    const NetworkFault fault = fault_;
    lock.unlock();
    if (fault.step >= Step::secured && !connection.handshake()) return;
    if (fault.step == Step::asked && connection.readRequest().empty()) return;
    ++met;  // before the client can have seen anything
    if (fault.step == Step::greeted) connection.greet(fault.bytes);
    if (fault.step == Step::asked) connection.send(fault.bytes);
    (connection.*fault.end)();
  }

  const HTTPMethod method_;
  const std::chrono::milliseconds patience_;
  std::mutex mutex_;
  NetworkFault fault_{Step::asked, &Connection::stall};
  FaultServer server_{[this](Connection& connection) { serve(connection); }};
  Runner runner_;
  std::shared_ptr<HTTPClient> client_;
};

/// What a fault is told as: a kind of error, and its text, a regular expression where it is a matter of time what is
/// noticed first.
struct Ended {
  Kind kind;
  const char* text;
};
constexpr Ended noSecurity{Kind::secureConnectionFailed, "could not agree on a secure connection"};
constexpr Ended lost{Kind::connectionLost, "connection lost"};
constexpr Ended closed{Kind::connectionLost, "connection closed without an answer"};
constexpr Ended anyLoss{Kind::connectionLost, "connection lost|connection closed without an answer"};
constexpr Ended cutShort{Kind::connectionLost, "the answer was cut short"};
constexpr Ended notHTTP{Kind::invalidAnswer, "the answer is not HTTP"};
constexpr Ended tooLargeHead{Kind::answerTooLarge, "the headers of the answer are too large"};
constexpr Ended timedOut{Kind::timedOut, "timed out"};

void expectFailure(const HTTPResponse& response, Ended ended, int status) {
  ASSERT_TRUE(response.error);
  EXPECT_EQ(response.error->kind(), ended.kind);
  EXPECT_EQ(response.error->statusCode().code(), status);
  EXPECT_THAT(response.error->description(), testing::MatchesRegex(ended.text));
}

struct FaultCase {
  const char* name;
  NetworkFault fault;
  Ended ended;
  int status = 0;
};

std::vector<FaultCase> faultCases() {
  const std::string head = "HTTP/1.1 200 OK\r\n";
  const auto withLength = [&](const std::string& length) {
    return answering(head + "Content-Length: " + length + "\r\n\r\n" + body);
  };
  const auto withChunks = [&](const std::string& chunks) {
    return answering(head + "Transfer-Encoding: chunked\r\n\r\n" + chunks);
  };
  std::string manyHeaders = head;
  while (manyHeaders.size() < std::size_t{20} << 20) manyHeaders += "X-Filler: " + std::string(1000, 'x') + "\r\n";
  return {
      {"reset in the handshake", {Step::greeted, &Connection::reset}, noSecurity},
      {"closed in the handshake", {Step::greeted, &Connection::finish}, noSecurity},
      {"closed in the hello", {Step::greeted, &Connection::finish, "\x16\x03\x03\x00\x7a\x02\x00"s}, noSecurity},
      {"no TLS", {Step::greeted, &Connection::finish, "HTTP/1.1 400 Bad Request\r\n\r\n"}, noSecurity},
      {"reset after the handshake", {Step::secured, &Connection::reset}, anyLoss},
      {"reset after the request", {Step::asked, &Connection::reset}, lost},

      {"another protocol", answering("SSH-2.0-x\r\n"), notHTTP},
      {"another version", answering("HTTP/9.9 200 OK\r\n\r\n"), notHTTP},
      {"frames of HTTP/2", answering("\0\0\x12\4\0\0\0\0\0"s), notHTTP},
      {"a body alone", answering(body), notHTTP},
      {"no status", answering("HTTP/1.1\r\n\r\n" + body), notHTTP},
      {"status of five digits", answering("HTTP/1.1 20000 OK\r\n\r\n" + body), notHTTP},
      {"no colon", answering(head + "nonsense\r\n\r\n" + body), notHTTP, 200},
      {"interim alone", answering("HTTP/1.1 103 Early\r\n\r\n"), closed},

      {"too long", withLength("1000"), cutShort, 200},
      {"negative", withLength("-1"), notHTTP, 200},
      {"two lengths", withLength("3\r\nContent-Length: 2"), notHTTP, 200},
      {"no chunk", withChunks("zz\r\n" + body), lost, 200},
      {"huge chunk", withChunks("fffffffffffffffff\r\n" + body), lost, 200},
      {"longer chunk", withChunks("3\r\nabcdef\r\n0\r\n\r\n"), lost, 200},
      {"giant header", answering(head + "X: " + std::string(200'000, 'x') + "\r\n\r\n"), tooLargeHead, 200},
      {"endless headers", answering(manyHeaders), tooLargeHead, 200},
  };
}

TEST(NetworkFaults, EndEachExchangeInTheRightErrorAndNoOther) {
  for (const HTTPMethod method : methods) {
    Replay replay(method);
    for (const FaultCase& c : faultCases()) {
      SCOPED_TRACE(c.name + " "s + std::string(rawValue(method)));
      expectFailure(replay.run(c.fault), c.ended, c.status);
      const bool answered = c.fault.step == Step::asked && !c.fault.bytes.empty();
      EXPECT_EQ(replay.met, answered ? 1 : replay.attempts());
      EXPECT_TRUE(replay.isHealthy()) << "something is left of the fault";
    }
    // What comes before the first byte of TLS is noticed while connecting or thereafter.
    const HTTPResponse early = replay.run({Step::accepted, &Connection::reset});
    ASSERT_TRUE(early.error);
    EXPECT_TRUE(early.error->kind() == Kind::cannotConnect || early.error->kind() == Kind::secureConnectionFailed);
    EXPECT_EQ(replay.met, replay.attempts());

    Replay refused(method, std::chrono::seconds(20), true);
    expectFailure(refused.run(answering("")), {Kind::cannotConnect, "connection refused: localhost:[0-9]+"}, 0);
  }
}

void stall(HTTPMethod method, Step step, const std::string& bytes, Ended ended, int status) {
  Replay replay(method, std::chrono::seconds(1));
  expectFailure(replay.run({step, &Connection::stall, bytes}), ended, status);
  EXPECT_EQ(replay.met, status == 0 ? replay.attempts() : 1);
}

TEST(NetworkFaults, StallsEndInTime) {
  std::vector<std::future<void>> running;
  for (const HTTPMethod method : methods) {
    const auto replay = [&](Step step, const std::string& bytes, Ended ended, int status) {
      running.push_back(std::async(std::launch::async, stall, method, step, bytes, ended, status));
    };
    replay(Step::accepted, "", {Kind::cannotConnect, "connecting timed out: localhost:[0-9]+"}, 0);
    replay(Step::secured, "", timedOut, 0);
    replay(Step::asked, "", timedOut, 0);
    replay(Step::asked, answered(Framing::chunks).substr(0, 70), timedOut, 200);
  }
  for (auto& each : running) each.get();
}

void expectCutNoticed(Framing framing, const NetworkFault& fault, const HTTPResponse& response, bool toldAll) {
  const std::size_t at = fault.bytes.size();
  const std::string whole = answered(framing);
  if (at <= whole.find('\n')) {
    expectFailure(response, closed, 0);
  } else if (toldAll) {
    EXPECT_EQ(response.body, body);
  } else if (at < whole.find("\r\n\r\n") + 4 || framing != Framing::connection) {
    expectFailure(response, cutShort, 200);
  } else {
    EXPECT_FALSE(response.error) << "nobody knows the length of the rest";
    EXPECT_THROW((void)JSONDecoder().decode<NewPostDto>(response.body), DecodingError);
  }
}

/// A reset may overtake the bytes before it, so that nothing of them is seen; what is seen is never taken for whole.
void expectResetNoticed(Framing framing, const HTTPResponse& response, bool toldAll) {
  if (!response.error) {
    EXPECT_TRUE(toldAll && framing != Framing::connection && response.body == body);
    return;
  }
  const int status = response.error->statusCode().code();
  EXPECT_TRUE(status == 0 || status == 200) << status;
  expectFailure(response, lost, status);
}

void cutEverywhere(HTTPMethod method, Framing framing) {
  Replay replay(method);
  const std::string answer = answered(framing);
  // Of the line end behind the last chunk libcurl does without the second half.
  const std::size_t whole = answer.size() - (framing == Framing::chunks ? 1 : 0);
  for (const auto end : {&Connection::finish, &Connection::cut, &Connection::reset}) {
    if (end == &Connection::cut && framing == Framing::chunks) continue;  // as with a length
    for (std::size_t at = 0; at <= whole && !testing::Test::HasFailure(); ++at) {
      SCOPED_TRACE(testing::Message() << rawValue(method) << ' ' << static_cast<int>(framing) << " at " << at);
      const NetworkFault fault{Step::asked, end, answer.substr(0, at)};
      const HTTPResponse response = replay.run(fault);
      if (end == &Connection::reset) {
        expectResetNoticed(framing, response, at == whole);
        EXPECT_TRUE(response.answerStarted || replay.met == replay.attempts());
      } else {
        expectCutNoticed(framing, fault, response, at == whole);
        EXPECT_EQ(replay.met, response.answerStarted ? 1 : replay.attempts());
      }
    }
  }
}

TEST(NetworkFaults, AnAnswerCutAtAnyByteIsNoRecord) {
  std::vector<std::future<void>> running;
  for (const HTTPMethod method : methods) {
    for (const Framing framing : {Framing::length, Framing::chunks, Framing::connection}) {
      running.push_back(std::async(std::launch::async, cutEverywhere, method, framing));
    }
  }
  for (auto& each : running) each.get();
}

}  // namespace
}  // namespace ZAK::Tests
