#include "Snippets.hpp"

#include <zvapikit/domains/FeedsDomain.hpp>
#include <zvapikit/http/ManualClock.hpp>

namespace {

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

void testing() { withFaults(); }
