// Signing in with the host's own Firebase provider. The kit has a token of its own, for which it trades a Firebase ID
// token; this shows when it asks for one and when it does not. A clock that is moved by hand makes hours pass.

#include <zvapikit/core/BlockingClient.hpp>
#include <zvapikit/core/Context.hpp>
#include <zvapikit/core/FirebaseAuthentifier.hpp>
#include <zvapikit/core/MobileApiClient.hpp>
#include <zvapikit/core/ZAKError.hpp>
#include <zvapikit/domains/ProfileDomain.hpp>
#include <zvapikit/emulator/EmulatorThread.hpp>
#include <zvapikit/http/ManualClock.hpp>
#include <zvapikit/keychain/InMemoryKeychain.hpp>

#include <iostream>
#include <optional>
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
  std::shared_ptr<ZAK::ManualClock> clock = std::make_shared<ZAK::ManualClock>(ZAK::ManualClock::autoAdvance);
  ZAK::EmulatorThread backend{{.now = [clock = clock] { return clock->now(); }}};
  // This stands in for the desktop's keyring. A host chooses between
  //   nullptr, the default: the keyring (Secret Service), or files where there is none. All hosts of the user's
  //     account share it, and with it the sign-in;
  //   KeychainFactory::make(KeychainFactory::Backend::file): files that only the user can read;
  //   std::make_shared<FileKeychain>(settings, directory): the same in a directory of the host's own;
  //   std::make_shared<InMemoryKeychain>(): nothing is kept, each run signs in anew.
  std::shared_ptr<ZAK::Keychain> keychain = std::make_shared<ZAK::InMemoryKeychain>();

  // What a run of the app makes its client from. That does not keep the provider alive: the host does.
  ZAK::Context context(const std::shared_ptr<FirebaseSignIn>& provider) {
    return {.configuration = {ZAK::Configuration::Environment::sandbox},
            .authentifier = provider,
            .transport = backend->transportOptions(),
            .keychain = keychain,
            .clock = clock};
  }
  std::size_t exchanges() { return backend->counts().of("POST /token"); }
};

std::string whoAmI(ZAK::BlockingClient& app) {
  ZAK::ProfileDomain profile{app.client()};
  try {
    return app.run(profile.fetch()).username;
  } catch (const ZAK::ZAKError& error) {
    return error.errorDescription();
  }
}

void check(bool holds, const char* what) {
  if (!holds) throw std::runtime_error(std::string("not as told: ") + what);
  std::cout << what << "\n";
}

}  // namespace

int main() {
  World world;
  const auto sdk = std::make_shared<FirebaseSDK>(FirebaseSDK{.clock = world.clock, .user = "alice"});
  auto provider = std::make_shared<FirebaseSignIn>(sdk);
  std::optional<ZAK::BlockingClient> app(world.context(provider));
  check(whoAmI(*app) == "alice" && sdk->fetches == 1 && world.exchanges() == 1, "first call: an ID token for a token");

  provider = std::make_shared<FirebaseSignIn>(sdk);
  app.emplace(world.context(provider));
  check(whoAmI(*app) == "alice" && sdk->fetches == 1 && world.exchanges() == 1, "restart: the stored token serves");

  world.clock->advance(std::chrono::hours(1));
  check(whoAmI(*app) == "alice" && sdk->fetches == 1 && world.exchanges() == 2, "expiry: renewed without Firebase");

  world.backend->revokeTokens();  // the server answers 401 from here on; whoever calls does not notice
  check(whoAmI(*app) == "alice" && sdk->fetches == 2 && world.exchanges() == 3,
        "rejection: a new ID token, call again");
  world.backend->expireTokens();
  check(whoAmI(*app) == "alice" && sdk->fetches == 2 && world.exchanges() == 4,
        "once more: the cached ID token serves");

  sdk->user = "bob";
  check(whoAmI(*app) == "alice", "another user of Firebase alone: the kit is still Alice's");
  app->run(app->client()->logout());  // forgets the kit's token, stored or not, then calls signOut() of the provider
  check(sdk->user.empty(), "logout: signed out of both");
  sdk->user = "bob";
  check(whoAmI(*app) == "bob" && sdk->fetches == 3, "signed in anew: the kit is Bob's");

  app->run(app->client()->logout());
  const std::size_t before = world.exchanges();
  check(whoAmI(*app).starts_with("Unauthorized (401)") && world.exchanges() == before, "no ID token: sent unsigned");
  app.emplace(world.context(nullptr));
  check(whoAmI(*app).starts_with("Unauthorized (401)") && world.exchanges() > before, "no provider: asked without one");
}
