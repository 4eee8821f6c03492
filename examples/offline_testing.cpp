// How a host tests itself without a network: a screen of the host's and its tests, with a scripted transport and a
// clock moved by hand, the last one with the emulator. Plain checks stand for a test framework.

#include <zvapikit/core/BlockingClient.hpp>
#include <zvapikit/core/Context.hpp>
#include <zvapikit/core/FirebaseAuthentifier.hpp>
#include <zvapikit/core/MobileApiClient.hpp>
#include <zvapikit/core/ZAKError.hpp>
#include <zvapikit/domains/FeedsDomain.hpp>
#include <zvapikit/emulator/EmulatorThread.hpp>
#include <zvapikit/http/ManualClock.hpp>
#include <zvapikit/http/ScriptedTransport.hpp>
#include <zvapikit/keychain/InMemoryKeychain.hpp>

#include <boost/asio/bind_cancellation_slot.hpp>
#include <boost/asio/cancellation_signal.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>

#include <iostream>
#include <stdexcept>

namespace {

namespace asio = boost::asio;
constexpr auto get = ZAK::HTTPMethod::get;

// What is tested: shows the friends' posts, and keeps the last good ones with a notice when a reload fails.
struct FeedScreen {
  asio::awaitable<void> reload() {
    try {
      posts = co_await feeds.fetchFriends();
      notice.clear();
    } catch (const ZAK::ZAKError& error) {
      notice = error.errorDescription();
    }
  }

  ZAK::FeedsDomain feeds;
  std::vector<ZAK::LegacyPostDto> posts{};
  std::string notice{};
};

// What each test starts from. The clock passes over every wait at once, and remembers it.
struct Offline {
  Offline() { server->signIn(std::chrono::hours(1)); }

  // Reloads as far as that goes without help from the test.
  void reload(asio::cancellation_slot slot = {}) {
    const auto end = [this](const std::exception_ptr& failure) { wasCancelled = failure != nullptr; };
    asio::co_spawn(io, screen.reload(), asio::bind_cancellation_slot(slot, end));
    settle();
  }
  void settle() {
    io.restart();
    io.poll();
  }

  asio::io_context io;
  std::shared_ptr<ZAK::ScriptedTransport> server = std::make_shared<ZAK::ScriptedTransport>();
  std::shared_ptr<ZAK::ManualClock> clock = std::make_shared<ZAK::ManualClock>(ZAK::ManualClock::autoAdvance);
  std::shared_ptr<ZAK::MobileApiClient> client =
      ZAK::MobileApiClient::create({.executor = io.get_executor(),
                                    .testTransport = server,  // and so the keychain is one in memory
                                    .clock = clock});
  FeedScreen screen{ZAK::FeedsDomain(client)};
  bool wasCancelled = false;
};

// An answer as the server gives it, written by the kit's own records.
ZAK::ScriptedAnswer feedOf(const char* username) {
  ZAK::LegacyPostDto post;
  post.user.username = username;
  post.photoURL = post.secondaryPhotoURL = ZAK::URL::parse("https://photos.example/1.jpg").value();
  return ZAK::ScriptedAnswer::json(std::vector<ZAK::LegacyPostDto>{post});
}

void check(bool holds, const char* what) {
  if (!holds) throw std::runtime_error(std::string("failed: ") + what);
  std::cout << "ok: " << what << "\n";
}

void keepsTheLastGoodFeed() {
  Offline test;
  test.server->add(get, "/feeds/friends", feedOf("bob"));
  test.server->add(get, "/feeds/friends", ZAK::ScriptedAnswer(503));
  test.reload();
  check(test.screen.posts.at(0).user.username == "bob" && test.screen.notice.empty(), "a feed is shown");
  test.reload();
  check(test.screen.posts.size() == 1 && test.screen.notice == "HTTP 503 Service Unavailable", "a 503 is told");
}

// Failed connections are the kit's to mend: the test states what a host may rely on, and takes no second.
void survivesALostConnection() {
  Offline test;
  const ZAK::HTTPError lost(ZAK::HTTPError::Kind::connectionLost, ZAK::HTTPStatusCode(), "connection lost");
  test.server->add(get, "/feeds/friends", ZAK::ScriptedAnswer(lost));
  test.server->add(get, "/feeds/friends", feedOf("bob"));
  test.reload();
  check(test.screen.posts.size() == 1 && test.clock->waits().size() == 1, "a lost connection is tried again");
  check(test.clock->waits()[0] <= std::chrono::seconds(1), "after a second at most");
}

void renewsTheToken() {
  Offline test;
  for (int i = 0; i < 2; ++i) {
    test.server->add(get, "/feeds/friends", feedOf("bob"));
    test.reload();
    test.clock->advance(std::chrono::hours(2));
  }
  check(test.server->requests(ZAK::HTTPMethod::post, "/token").size() == 2, "an expired token is renewed");
  const ZAK::TransferRequest last = test.server->requests(get, "/feeds/friends").back();
  check(last.headers.value("Authorization") == "Bearer access-2", "and the new one is used");
}

void leavingCancels() {
  Offline test;
  ZAK::ScriptedHold slowServer;
  asio::cancellation_signal leave;
  test.server->add(get, "/feeds/friends", feedOf("bob"), slowServer);
  test.reload(leave.slot());
  check(slowServer.waiting() == 1, "the answer is on its way");
  leave.emit(asio::cancellation_type::terminal);
  test.settle();
  check(test.wasCancelled && slowServer.waiting() == 0 && test.screen.notice.empty(), "leaving cancels without a word");
}

// The same screen before a whole back-end, over TLS: slower, but nothing of the server's has to be written down.
void worksWithABackend() {
  struct Firebase : ZAK::FirebaseAuthentifier {
    asio::awaitable<std::string> idToken() override { co_return "firebase-alice"; }
    void signOut() noexcept override {}
  };
  const auto firebase = std::make_shared<Firebase>();
  ZAK::EmulatorThread backend;
  backend->inject({.path = "/feeds/friends", .answer = ZAK::EmulatorResponse{503}});
  ZAK::BlockingClient app({.authentifier = firebase,
                           .transport = backend->transportOptions(),
                           .keychain = std::make_shared<ZAK::InMemoryKeychain>()});
  FeedScreen screen{ZAK::FeedsDomain(app.client())};
  app.run(screen.reload());
  check(screen.notice == "HTTP 503 Service Unavailable", "the back-end fails when told to");
  app.run(screen.reload());
  check(screen.notice.empty() && screen.posts.size() == 2, "Alice sees her two friends");
  check(backend->counts().of("GET /feeds/friends") == 2 && backend->counts().faults == 1, "and asked twice");
}

}  // namespace

int main() {
  keepsTheLastGoodFeed();
  survivesALostConnection();
  renewsTheToken();
  leavingCancels();
  worksWithABackend();
}
