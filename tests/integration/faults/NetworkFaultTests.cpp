#include "Replay.hpp"

#include <gmock/gmock.h>

#include <future>
#include <iostream>
#include <vector>

namespace ZAK::Tests {
namespace {

using namespace std::string_literals;
using Ending = NetworkFault::Ending;
using Exchange = Replay::Exchange;
using Kind = HTTPError::Kind;
using Step = NetworkFault::Step;

constexpr Exchange exchanges[] = {Exchange::reading, Exchange::signingIn, Exchange::uploading};

/// Looks for secrets in what the kit prints of the bodies of failed calls.
class PrintedBodies {
 public:
  PrintedBodies() { testing::internal::CaptureStdout(); }
  ~PrintedBodies() {
    const std::string text = testing::internal::GetCapturedStdout();
    expectNoSecret(text);
    if (testing::Test::HasFailure()) std::cout << text;  // what failed is told there too
  }
  PrintedBodies(const PrintedBodies&) = delete;
  PrintedBodies& operator=(const PrintedBodies&) = delete;
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

void expectFailure(const Replayed& replayed, Ended ended, int status) {
  EXPECT_FALSE(replayed.succeeded);
  EXPECT_FALSE(replayed.undecodable);
  ASSERT_TRUE(replayed.error);
  EXPECT_EQ(replayed.error->kind(), ended.kind);
  EXPECT_EQ(replayed.error->statusCode().code(), status);
  EXPECT_THAT(replayed.error->description(), testing::MatchesRegex(ended.text));
}

struct FaultCase {
  const char* name;
  NetworkFault fault;
  Ended ended;
  int status = 0;
};

NetworkFault answering(std::string bytes) { return {Step::asked, Ending::close, std::move(bytes)}; }

std::vector<FaultCase> faultCases(const std::string& body) {
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
      {"reset in the handshake", {Step::greeted, Ending::reset}, noSecurity},
      {"closed in the handshake", {Step::greeted, Ending::close}, noSecurity},
      {"closed in the hello", {Step::greeted, Ending::close, "\x16\x03\x03\x00\x7a\x02\x00"s}, noSecurity},
      {"no TLS", {Step::greeted, Ending::close, "HTTP/1.1 400 Bad Request\r\n\r\n"}, noSecurity},
      {"reset after the handshake", {Step::secured, Ending::reset}, anyLoss},
      {"reset after the request", {Step::asked, Ending::reset}, lost},

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
  const PrintedBodies printed;
  for (const Exchange exchange : exchanges) {
    Replay replay(exchange, {.maxRetries = 1});
    EXPECT_TRUE(replay.runHealthy().succeeded);
    for (const FaultCase& c : faultCases(healthyBody(exchange))) {
      SCOPED_TRACE(c.name + " "s + std::to_string(static_cast<int>(exchange)));
      const Replayed replayed = replay.run(c.fault);
      expectFailure(replayed, c.ended, c.status);
      const bool answered = c.fault.step == Step::asked && !c.fault.bytes.empty();
      EXPECT_EQ(replayed.met, answered ? 1 : replay.attempts());
      EXPECT_TRUE(replay.runHealthy().succeeded) << "nothing is left of the fault";
    }
    // What comes before the first byte of TLS is noticed while connecting or thereafter.
    const Replayed early = replay.run({Step::accepted, Ending::reset});
    ASSERT_TRUE(early.error);
    EXPECT_TRUE(early.error->kind() == Kind::cannotConnect || early.error->kind() == Kind::secureConnectionFailed);
    EXPECT_EQ(early.met, replay.attempts());

    Replay refused(exchange, {.refuses = true});
    expectFailure(refused.run(answering("")), {Kind::cannotConnect, "connection refused: localhost:[0-9]+"}, 0);
  }
}

void stall(Exchange exchange, NetworkFault fault, Ended ended, int status) {
  Replay replay(exchange, {.patience = std::chrono::seconds(1)});
  EXPECT_TRUE(replay.runHealthy().succeeded);
  const Replayed replayed = replay.run(std::move(fault));
  expectFailure(replayed, ended, status);
  EXPECT_EQ(replayed.met, status == 0 ? replay.attempts() : 1);
}

TEST(NetworkFaults, StallsEndInTime) {
  const PrintedBodies printed;
  std::vector<std::future<void>> running;
  for (const Exchange exchange : exchanges) {
    const auto replay = [&](Step step, const std::string& bytes, Ended ended, int status) {
      const NetworkFault fault{step, Ending::stall, bytes};
      running.push_back(std::async(std::launch::async, stall, exchange, fault, ended, status));
    };
    replay(Step::accepted, "", {Kind::cannotConnect, "connecting timed out: localhost:[0-9]+"}, 0);
    replay(Step::secured, "", timedOut, 0);
    replay(Step::asked, "", timedOut, 0);
    replay(Step::asked, answered(healthyBody(exchange), Framing::chunks).substr(0, 70), timedOut, 200);
  }
  for (auto& each : running) each.get();
}

/// Where an answer was cut.
struct Cut {
  Exchange exchange;
  Framing framing;
  Ending ending;
  std::size_t at;
  std::size_t firstLine;  ///< lengths
  std::size_t head;
  std::size_t whole;
};

void expectResetNoticed(const Cut& cut, const Replayed& replayed, int attempts) {
  // A reset may overtake the bytes before it, so that nothing of them is seen; what is seen is never taken for whole.
  if (replayed.succeeded) {
    EXPECT_EQ(cut.at, cut.whole);
    EXPECT_NE(cut.framing, Framing::connection);
    return;
  }
  ASSERT_TRUE(replayed.error);
  const int status = replayed.error->statusCode().code();
  expectFailure(replayed, lost, status);
  EXPECT_TRUE(status == 0 || (status == 200 && cut.at >= cut.firstLine)) << status;
  EXPECT_LE(replayed.met, attempts);
  EXPECT_TRUE(status == 200 || replayed.met == attempts) << replayed.met;
}

void expectCutNoticed(const Cut& cut, const Replayed& replayed, int attempts) {
  if (cut.ending == Ending::reset) return expectResetNoticed(cut, replayed, attempts);
  EXPECT_EQ(replayed.met, cut.at < cut.firstLine ? attempts : 1);
  if (cut.at < cut.firstLine) {
    expectFailure(replayed, closed, 0);
  } else if (cut.at == cut.whole) {
    EXPECT_TRUE(replayed.succeeded);
  } else if (cut.at < cut.head || cut.framing != Framing::connection) {
    expectFailure(replayed, cutShort, 200);
  } else if (cut.exchange == Exchange::uploading) {
    EXPECT_TRUE(replayed.succeeded) << "the status is all that counts, and nobody knows the length of the rest";
  } else if (cut.at == cut.head) {
    expectFailure(replayed, {Kind::emptyResponse, "HTTP 200 OK with an empty body"}, 200);
  } else {
    EXPECT_TRUE(replayed.undecodable);
  }
}

void cutEverywhere(Exchange exchange, Framing framing) {
  Replay replay(exchange);
  EXPECT_TRUE(replay.runHealthy().succeeded);
  const std::string answer = answered(healthyBody(exchange), framing);
  // Of the line end behind the last chunk libcurl does without the second half.
  const std::size_t whole = answer.size() - (framing == Framing::chunks ? 1 : 0);
  for (const Ending ending : {Ending::close, Ending::drop, Ending::reset}) {
    if (ending == Ending::drop && framing == Framing::chunks) continue;  // as with a length
    for (std::size_t at = 0; at <= whole && !testing::Test::HasFailure(); ++at) {
      SCOPED_TRACE(testing::Message() << static_cast<int>(exchange) << ' ' << static_cast<int>(framing) << ' '
                                      << static_cast<int>(ending) << " at " << at << " of " << whole);
      const Cut cut{exchange, framing, ending, at, answer.find('\n') + 1, answer.find("\r\n\r\n") + 4, whole};
      expectCutNoticed(cut, replay.run({Step::asked, ending, answer.substr(0, at)}), replay.attempts());
    }
  }
}

TEST(NetworkFaults, AnAnswerCutAtAnyByteIsNoRecord) {
  const PrintedBodies printed;
  std::vector<std::future<void>> running;
  for (const Exchange exchange : exchanges) {
    for (const Framing framing : {Framing::length, Framing::chunks, Framing::connection}) {
      running.push_back(std::async(std::launch::async, cutEverywhere, exchange, framing));
    }
  }
  for (auto& each : running) each.get();
}

}  // namespace
}  // namespace ZAK::Tests
