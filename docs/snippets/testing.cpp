#include "Snippets.hpp"

#include <zvapikit/core/ZAKError.hpp>
#include <zvapikit/domains/FeedsDomain.hpp>
#include <zvapikit/domains/ProfileDomain.hpp>
#include <zvapikit/http/ManualClock.hpp>
#include <zvapikit/http/ScriptedTransport.hpp>

namespace {

/// What is to be tested: a piece of a host.
boost::asio::awaitable<void> greet(std::shared_ptr<ZAK::MobileApiClient> client, std::string* greeting) {
  ZAK::ProfileDomain profile{client};
  const ZAK::ProfileDto me = co_await profile.fetch();
  *greeting = "Hello " + me.username;
}

constexpr const char* token =
    R"({"token_type":"bearer","access_token":"a","refresh_token":"r","scope":"","expires_in":3600})";
constexpr const char* profile =
    R"({"id":"alice","username":"alice","devices":[],"quiblets":[],"canPost":true,"canUpdateRegion":false})";

// A test without a network: the answers are written down.
void scripted() {
  const auto transport = std::make_shared<ZAK::ScriptedTransport>();
  transport->add(ZAK::HTTPMethod::post, "/token", ZAK::ScriptedAnswer(201, token));
  transport->add(ZAK::HTTPMethod::get, "/person/me", ZAK::ScriptedAnswer(200, profile));

  boost::asio::io_context io;
  const auto firebase = std::make_shared<Alice>();
  const auto client = ZAK::MobileApiClient::create({
      .authentifier = firebase,
      .executor = io.get_executor(),
      .keychain = std::make_shared<ZAK::InMemoryKeychain>(),
      .testTransport = transport,
      .clock = std::make_shared<ZAK::ManualClock>(ZAK::ManualClock::autoAdvance),
  });
  std::string greeting;
  run(io, greet(client, &greeting));

  require(greeting == "Hello alice", greeting.c_str());
  require(transport->requests().at(1).headers.value("Authorization") == "Bearer a", "the call was not signed");
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
  scripted();
  withFaults();
}
