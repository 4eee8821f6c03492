#include "Snippets.hpp"

#include <zvapikit/core/LoggerDelegate.hpp>
#include <zvapikit/core/ZAKError.hpp>
#include <zvapikit/domains/FeedsDomain.hpp>
#include <zvapikit/domains/ProfileDomain.hpp>
#include <zvapikit/keychain/KeychainFactory.hpp>

#include <iostream>

namespace {

class Logger : public ZAK::LoggerDelegate {
 public:
  void message(std::string_view, std::optional<std::string_view>) override { ++lines; }
  void warning(std::string_view) override { ++lines; }
  void error(std::string_view, const std::exception*) override { ++lines; }

  int lines = 0;
};

using Firebase = Alice;

// What a host owns for as long as it uses the kit.
struct App {
  boost::asio::io_context io;
  std::shared_ptr<Firebase> firebase = std::make_shared<Firebase>();
  std::shared_ptr<Logger> logger = std::make_shared<Logger>();
  std::shared_ptr<ZAK::MobileApiClient> client;
};

ZAK::Context wholeContext(App& app) {
  ZAK::Context context{
      .configuration = {ZAK::Configuration::Environment::production},
      .deviceInfo = ZAK::DeviceInfo("Linux", "6.1", "device-1"),
      .authentifier = app.firebase,
      .logger = app.logger,
      .executor = app.io.get_executor(),
      .bundle = {.executable = "MyApp", .shortVersion = "2.3.1", .identifier = "com.example.app", .version = "457"},
      .redactsSecrets = true,
  };
  context.transport.proxy = "http://proxy.example:3128";
  context.servers.mobileProduction = "https://mobile.example.org/api";
  context.servers.authProduction = "https://auth.example.org";
  context.keychain = ZAK::KeychainFactory::make(ZAK::KeychainFactory::Backend::file);
  context.directories.documents = "/var/lib/myapp/documents";
  return context;
}

boost::asio::awaitable<void> keepWhileInFlight(std::shared_ptr<ZAK::MobileApiClient> client) {
  ZAK::FeedsDomain feeds{client};
  auto posts = feeds.fetchFriends();  // nothing is sent before it is awaited
  client.reset();
  try {
    co_await std::move(posts);
    throw std::logic_error("a group has kept its client");
  } catch (const ZAK::ZAKError& error) {
    require(error.kind() == ZAK::ZAKError::noClientAvailable, error.what());
  }
}

boost::asio::awaitable<void> twoUsers(const ZAK::EmulatorThread* backend, boost::asio::io_context* io) {
  const auto alice = std::make_shared<Alice>();
  ZAK::Context context = contextFor(*backend, *io, alice);
  const auto first = ZAK::MobileApiClient::create(context);
  context.keychain = std::make_shared<ZAK::InMemoryKeychain>();  // else both would share a token
  const auto second = ZAK::MobileApiClient::create(context);
  ZAK::ProfileDomain profile{second};
  const ZAK::ProfileDto me = co_await profile.fetch();
  require(me.username == "alice", "nobody is signed in");
}

}  // namespace

void setup() {
  ZAK::EmulatorThread backend;
  App app;
  // The whole context is for reading: its servers are nobody's. It must be one that a client takes.
  (void)ZAK::MobileApiClient::create(wholeContext(app));
  app.client = ZAK::MobileApiClient::create(contextFor(backend, app.io, app.firebase));
  run(app.io, keepWhileInFlight(std::exchange(app.client, nullptr)));
  run(app.io, twoUsers(&backend, &app.io));
}
