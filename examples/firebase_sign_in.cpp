// Signing in with the host's own Firebase provider. The kit has a token of its own, for which it trades a Firebase ID
// token; this shows when it asks for one and when it does not. A clock that is moved by hand makes hours pass.

#include <zvapikit/core/Context.hpp>
#include <zvapikit/core/FirebaseAuthentifier.hpp>
#include <zvapikit/core/MobileApiClient.hpp>
#include <zvapikit/core/ZAKError.hpp>
#include <zvapikit/domains/ProfileDomain.hpp>
#include <zvapikit/emulator/EmulatorThread.hpp>
#include <zvapikit/http/ManualClock.hpp>
#include <zvapikit/keychain/InMemoryKeychain.hpp>

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>

#include <iostream>
#include <stdexcept>

namespace {

// Stands in for the Firebase SDK, whose ID tokens are good for an hour.
struct FirebaseSDK {
  struct IDToken {
    std::string text;
    ZAK::Date expires;
  };

  boost::asio::awaitable<IDToken> fetchIDToken() {
    if (user.empty()) throw std::runtime_error("nobody is signed in to Firebase");
    ++fetches;
    IDToken token{"firebase-" + user, clock->now() + std::chrono::hours(1)};
    co_return token;
  }

  std::shared_ptr<ZAK::Clock> clock;
  std::string user{};
  int fetches = 0;
};

// The provider keeps an ID token until five minutes before its end. The kit calls it on the client's executor: where
// several threads run that, the cache needs a mutex.
class FirebaseSignIn : public ZAK::FirebaseAuthentifier {
 public:
  explicit FirebaseSignIn(std::shared_ptr<FirebaseSDK> sdk) : sdk_(std::move(sdk)) {}

  boost::asio::awaitable<std::string> idToken() override {
    const bool isFresh = cached_ && sdk_->clock->now() < cached_->expires - std::chrono::minutes(5);
    if (!isFresh) cached_ = co_await sdk_->fetchIDToken();  // an exception tells the kit that there is no token
    co_return cached_->text;
  }

  void signOut() noexcept override {
    cached_.reset();
    sdk_->user.clear();
  }

 private:
  std::shared_ptr<FirebaseSDK> sdk_;
  std::optional<FirebaseSDK::IDToken> cached_;
};

// What outlives a run of the app: the time, the back-end, and the place where the kit's token is kept.
struct World {
  boost::asio::any_io_executor executor;
  std::shared_ptr<ZAK::ManualClock> clock = std::make_shared<ZAK::ManualClock>(ZAK::ManualClock::autoAdvance);
  ZAK::EmulatorThread backend{{.now = [clock = clock] { return clock->now(); }}};
  // This stands in for the desktop's keyring. A host chooses between
  //   nullptr, the default: the keyring (Secret Service), or files where there is none. All hosts of the user's
  //     account share it, and with it the sign-in;
  //   KeychainFactory::make(KeychainFactory::Backend::file): files that only the user can read;
  //   std::make_shared<FileKeychain>(settings, directory): the same in a directory of the host's own;
  //   std::make_shared<InMemoryKeychain>(): nothing is kept, each run signs in anew.
  std::shared_ptr<ZAK::Keychain> keychain = std::make_shared<ZAK::InMemoryKeychain>();

  // A start of the app. The client does not keep the provider alive: that is up to the host.
  std::shared_ptr<ZAK::MobileApiClient> start(const std::shared_ptr<FirebaseSignIn>& provider) {
    return ZAK::MobileApiClient::create({.configuration = {ZAK::Configuration::Environment::sandbox},
                                         .authentifier = provider,
                                         .executor = executor,
                                         .transport = backend->transportOptions(),
                                         .keychain = keychain,
                                         .clock = clock});
  }
  std::size_t exchanges() { return backend->counts().of("POST /token"); }
};

boost::asio::awaitable<std::string> whoAmI(std::shared_ptr<ZAK::MobileApiClient> client) {
  ZAK::ProfileDomain profile{client};
  std::string name;
  try {
    const ZAK::ProfileDto me = co_await profile.fetch();
    name = me.username;
  } catch (const ZAK::ZAKError& error) {
    name = error.errorDescription();
  }
  co_return name;
}

void check(bool holds, const char* what) {
  if (!holds) throw std::runtime_error(std::string("not as told: ") + what);
  std::cout << what << "\n";
}

boost::asio::awaitable<void> play(std::shared_ptr<World> world, std::shared_ptr<FirebaseSDK> sdk) {
  auto provider = std::make_shared<FirebaseSignIn>(sdk);
  auto client = world->start(provider);
  std::string me = co_await whoAmI(client);
  check(me == "alice" && sdk->fetches == 1 && world->exchanges() == 1, "first call: one ID token for one token");

  provider = std::make_shared<FirebaseSignIn>(sdk);
  client = world->start(provider);
  me = co_await whoAmI(client);
  check(me == "alice" && sdk->fetches == 1 && world->exchanges() == 1, "restart: the stored token serves");

  world->clock->advance(std::chrono::hours(1));
  me = co_await whoAmI(client);
  check(me == "alice" && sdk->fetches == 1 && world->exchanges() == 2, "expiry: renewed without Firebase");

  world->backend->revokeTokens();  // the server answers 401 from here on; the call does not notice
  me = co_await whoAmI(client);
  check(me == "alice" && sdk->fetches == 2 && world->exchanges() == 3, "rejection: a new ID token, the call repeated");
  world->backend->expireTokens();
  me = co_await whoAmI(client);
  check(me == "alice" && sdk->fetches == 2 && world->exchanges() == 4, "rejection again: the cached ID token serves");

  sdk->user = "bob";
  me = co_await whoAmI(client);
  check(me == "alice", "another user of Firebase alone: the kit is still Alice's");
  co_await client->logout();  // first the kit's token, in memory and stored, then the provider's signOut()
  check(sdk->user.empty(), "logout: signed out of both");
  sdk->user = "bob";
  me = co_await whoAmI(client);
  check(me == "bob" && sdk->fetches == 3, "signed in anew: the kit is Bob's");

  co_await client->logout();
  std::size_t before = world->exchanges();
  me = co_await whoAmI(client);
  check(me.starts_with("Unauthorized (401)") && world->exchanges() == before, "no ID token: unsigned, and refused");
  client = world->start(nullptr);
  me = co_await whoAmI(client);
  check(me.starts_with("Unauthorized (401)") && world->exchanges() > before, "no provider: tried without an ID token");
}

}  // namespace

int main() {
  boost::asio::io_context io;
  const auto world = std::make_shared<World>();
  world->executor = io.get_executor();
  const auto sdk = std::make_shared<FirebaseSDK>(FirebaseSDK{.clock = world->clock, .user = "alice"});
  boost::asio::co_spawn(io, play(world, sdk), [](std::exception_ptr failure) {
    if (failure) std::rethrow_exception(failure);
  });
  io.run();
}
