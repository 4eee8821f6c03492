#include "Snippets.hpp"

#include <zvapikit/core/BlockingClient.hpp>
#include <zvapikit/domains/FeedsDomain.hpp>
#include <zvapikit/http/ManualClock.hpp>
#include <zvapikit/http/ScriptedTransport.hpp>

namespace {

// A test without a network: the first answer is lost, and the wait before the second attempt takes no time.
void withoutNetwork() {
  const auto server = std::make_shared<ZAK::ScriptedTransport>();
  server->signIn();
  const ZAK::HTTPError lost(ZAK::HTTPError::Kind::connectionLost, ZAK::HTTPStatusCode(), "connection lost");
  server->add(ZAK::HTTPMethod::get, "/feeds/friends", ZAK::ScriptedAnswer(lost));
  server->add(ZAK::HTTPMethod::get, "/feeds/friends", ZAK::ScriptedAnswer(200, "[]"));
  const auto clock = std::make_shared<ZAK::ManualClock>(ZAK::ManualClock::autoAdvance);
  ZAK::BlockingClient app({.testTransport = server, .clock = clock});
  ZAK::FeedsDomain feeds{app.client()};
  require(app.run(feeds.fetchFriends()).empty(), "nobody has posted");
  require(server->requests().back().url.ends_with("/feeds/friends"), "another path");
  require(server->requests().size() == 3, "not a token and two attempts");
}

boost::asio::awaitable<void> readFeed(std::shared_ptr<ZAK::MobileApiClient> client) {
  ZAK::FeedsDomain feeds{client};
  co_await feeds.fetchFriends();
}

// A test over real sockets and TLS: the emulator misbehaves as it is told.
void withFaults() {
  ZAK::EmulatorThread backend({.tokenLifetime = std::chrono::minutes(5)});
  const std::size_t lost = backend->inject({.server = ZAK::EmulatorServer::mobile,
                                            .path = "/feeds/friends",
                                            .cutAfter = 0,
                                            .ending = ZAK::EmulatorFault::Ending::reset});

  boost::asio::io_context io;
  const auto firebase = std::make_shared<Alice>();
  ZAK::Context context = contextFor(backend, io, firebase);
  context.clock = std::make_shared<ZAK::ManualClock>(ZAK::ManualClock::autoAdvance);  // no back-off in a test
  const auto client = ZAK::MobileApiClient::create(std::move(context));
  run(io, readFeed(client));

  require(backend->timesMet(lost) == 1, "the fault was not met");
  require(backend->counts().of("GET /feeds/friends") == 2, "the call was not repeated");
}

}  // namespace

void testing() {
  withoutNetwork();
  withFaults();
}
