#include "Snippets.hpp"

#include <zvapikit/core/ZAKError.hpp>
#include <zvapikit/domains/ProfileDomain.hpp>
#include <zvapikit/http/ManualClock.hpp>
#include <zvapikit/keychain/FileKeychain.hpp>

#include <boost/asio/async_result.hpp>
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/asio/use_awaitable.hpp>

#include <functional>
#include <thread>

namespace {

/// As SDKs are: it calls back from a thread of its own.
struct FirebaseSdk {
  using Callback = std::function<void(std::string token, std::string error)>;

  void getIdToken(Callback done) {
    std::thread([done = std::move(done), user = user] {
      user.empty() ? done("", "nobody is signed in") : done("firebase-" + user, "");
    }).detach();
  }
  void signOut() noexcept { user.clear(); }

  std::string user = "alice";
};

// An SDK that calls back, as a Firebase authentifier.
class Firebase : public ZAK::FirebaseAuthentifier {
 public:
  explicit Firebase(FirebaseSdk& sdk) : sdk_(&sdk) {}

  boost::asio::awaitable<std::string> idToken() override { return ask(sdk_); }
  void signOut() noexcept override { sdk_->signOut(); }

 private:
  static boost::asio::awaitable<std::string> ask(FirebaseSdk* sdk) {
    const auto executor = co_await boost::asio::this_coro::executor;
    const auto work = boost::asio::make_work_guard(executor);  // run() waits for the SDK's answer
    auto initiate = [sdk, work](auto handler) {
      const auto shared = std::make_shared<decltype(handler)>(std::move(handler));
      sdk->getIdToken([shared, work](std::string token, std::string error) {
        boost::asio::post(work.get_executor(), [shared, token, error] {
          std::exception_ptr failure;
          if (!error.empty()) failure = std::make_exception_ptr(std::runtime_error(error));
          (*shared)(failure, token);
        });
      });
    };
    using Token = const boost::asio::use_awaitable_t<>;
    co_return co_await boost::asio::async_initiate<Token, void(std::exception_ptr, std::string)>(
        std::move(initiate), boost::asio::use_awaitable);
  }

  FirebaseSdk* sdk_;
};

boost::asio::awaitable<std::string> whoAmI(std::shared_ptr<ZAK::MobileApiClient> client) {
  ZAK::ProfileDomain profile{client};
  const ZAK::ProfileDto me = co_await profile.fetch();
  co_return me.username;
}

boost::asio::awaitable<void> ask(std::shared_ptr<ZAK::MobileApiClient> client) { co_await whoAmI(client); }

boost::asio::awaitable<void> changeUser(std::shared_ptr<ZAK::MobileApiClient> client, FirebaseSdk* sdk) {
  co_await client->logout();  // forgets the token, then calls signOut() of the authentifier
  sdk->user = "bob";
  const std::string name = co_await whoAmI(client);
  require(name == "bob", "the stored token has won");
}

boost::asio::awaitable<void> visit(std::shared_ptr<ZAK::MobileApiClient> client, FirebaseSdk* sdk) {
  const std::string name = co_await whoAmI(client);
  require(name == "alice", "nobody is signed in");
  co_await changeUser(client, sdk);
}

/// What a call costs whose Firebase token is refused, or that has none to offer, as docs/guide/sign-in.md tells it.
void refused(const ZAK::EmulatorThread& backend, const std::shared_ptr<ZAK::FirebaseAuthentifier>& authentifier,
             std::size_t exchanges, std::chrono::seconds atLeast, std::chrono::seconds atMost) {
  boost::asio::io_context io;
  const auto clock = std::make_shared<ZAK::ManualClock>(ZAK::ManualClock::autoAdvance);
  ZAK::Context context = contextFor(backend, io, authentifier);
  context.clock = clock;
  const auto client = ZAK::MobileApiClient::create(std::move(context));
  const auto start = clock->now();
  const std::size_t before = backend->counts().of("POST /token");
  bool failed = false;
  try {
    run(io, ask(client));
  } catch (const ZAK::ZAKError&) {
    failed = true;
  }
  require(failed, "nobody has been signed in");
  require(backend->counts().of("POST /token") - before == exchanges, "not the exchanges that the guide tells");
  const auto took = clock->now() - start;
  require(took >= atLeast && took <= atMost, "not the time that the guide tells");
}

struct Stale : Alice {
  boost::asio::awaitable<std::string> idToken() override { co_return "stale"; }
};
struct Nobody : Alice {
  boost::asio::awaitable<std::string> idToken() override { throw std::runtime_error("nobody is signed in"); }
};

void keepApart(ZAK::Context& context) {
  const ZAK::KeychainSettings settings{.service = "com.example.app", .accessGroup = "com.example.app"};
  const std::filesystem::path directory = ZAK::FileKeychain::defaultDirectory(settings.service);
  context.keychain = std::make_shared<ZAK::FileKeychain>(settings, directory);
}

}  // namespace

void signIn() {
  ZAK::EmulatorThread backend;
  boost::asio::io_context io;
  FirebaseSdk sdk;
  const auto firebase = std::make_shared<Firebase>(sdk);
  const auto client = ZAK::MobileApiClient::create(contextFor(backend, io, firebase));
  run(io, visit(client, &sdk));
  ZAK::Context context;
  keepApart(context);
  require(context.keychain->settings().service == "com.example.app", "not the host's own");
  using std::chrono::seconds;
  const auto nobody = std::make_shared<Nobody>();
  refused(backend, nobody, 0, seconds(0), seconds(1));
  refused(backend, nullptr, 18, seconds(46), seconds(94));
  const auto stale = std::make_shared<Stale>();
  refused(backend, stale, 18, seconds(46), seconds(94));
}
