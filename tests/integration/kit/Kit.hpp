#pragma once

#include "support/Runner.hpp"
#include "support/TemporaryDirectory.hpp"

#include <zvapikit/core/Context.hpp>
#include <zvapikit/core/FirebaseAuthentifier.hpp>
#include <zvapikit/core/LoggerDelegate.hpp>
#include <zvapikit/core/MobileApiClient.hpp>
#include <zvapikit/core/MonitorDelegate.hpp>
#include <zvapikit/domains/ContentDomain.hpp>
#include <zvapikit/emulator/EmulatorThread.hpp>
#include <zvapikit/http/ManualClock.hpp>
#include <zvapikit/http/ScriptedTransport.hpp>
#include <zvapikit/keychain/InMemoryKeychain.hpp>

#include <nlohmann/json.hpp>

#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace ZAK::Tests {

using boost::asio::awaitable;
using Texts = std::vector<std::string>;

/// Fails the test when a token, or anything else that must stay secret, shows in the text.
void expectNoSecret(std::string_view text);

/// How a call ended, in one line: `ok`, `cancelled`, `apiError: ...`, `httpError: ...`, or the other error's own text.
std::string outcome(const std::exception_ptr& failure);

/// Keeps what it is told, and looks for secrets in it.
class RecordingLogger final : public LoggerDelegate {
 public:
  explicit RecordingLogger(bool allowsRejectedBearer) : allowsRejectedBearer_(allowsRejectedBearer) {}

  void message(std::string_view text, std::optional<std::string_view> extra) override;
  void warning(std::string_view text) override;
  void error(std::string_view text, const std::exception* error) override;

  /// The lines since the last time, each behind the name of its operation.
  Texts take();

 private:
  void keep(std::string_view operation, std::string_view text);

  const bool allowsRejectedBearer_;
  std::mutex mutex_;
  Texts lines_;
};

/// Keeps the notifications as `operation METHOD path`, with what they tell.
class RecordingMonitor final : public MonitorDelegate {
 public:
  void didEnqueue(const HTTPRequest& request, const HTTPTransfer& transfer) override;
  void didCollectMetrics(const HTTPRequest& request, const HTTPMetrics& metrics) override;
  void didComplete(const HTTPRequest& request, const HTTPError* error) override;
  void didReceive(const HTTPRequest& request, std::optional<std::string_view> body) override;

  Texts take();

 private:
  void keep(std::string_view operation, const HTTPRequest& request, std::string_view detail);

  std::mutex mutex_;
  Texts events_;
};

/// Alice's Firebase sign-in, unless told otherwise.
class Firebase final : public FirebaseAuthentifier {
 public:
  explicit Firebase(std::shared_ptr<InMemoryKeychain> keychain) : keychain_(std::move(keychain)) {}

  awaitable<std::string> idToken() override { return token(user, fails); }
  void signOut() noexcept override;

  std::string user = "alice";
  bool fails = false;
  int signOuts = 0;

 private:
  static awaitable<std::string> token(std::string user, bool fails);

  std::shared_ptr<InMemoryKeychain> keychain_;
};

/// A back-end, and an app that has a client for it, on the sandbox and one clock. The executor must have run dry when
/// the kit goes.
class Kit {
 public:
  struct Options {
    ManualClock::Mode clock = ManualClock::autoAdvance;
    EmulatorOptions emulator{};
    bool redactsSecrets = false;
  };

  Kit() : Kit(Options()) {}
  explicit Kit(Options options);

  /// What the client was built from, to build another.
  [[nodiscard]] Context context();

  /// A call that reads Bob's post.
  [[nodiscard]] awaitable<void> reading() { return readBobsPost(ContentDomain(client)); }
  /// Runs a call to its end and tells it.
  std::string outcomeOf(awaitable<void> call);
  /// Starts a call whose outcome is appended to `outcomes`.
  void start(awaitable<void> call, boost::asio::cancellation_slot slot = {});
  /// Runs until nothing is in flight, moving a manual clock on.
  void finish();
  /// Signs in, and forgets what came of it.
  void signIn();

  /// Continues as another user, in a new app.
  void actAs(const std::string& user);
  /// Makes an operation of the catalogue by its name. In the JSON of its arguments `$` and a JSON Pointer (RFC 6901)
  /// name a part of the latest result, and `DIR` is a directory. Expected are the parts that the result must have:
  /// keys of an object, elements of an array unless that is empty; of a refusal its status or its error key; nothing,
  /// when there is no result.
  void perform(std::string_view operation, std::string arguments, std::string_view expected);

  /// What arrived since the last time: `firebase`, `refresh`, and for other requests method and path, with `signed`
  /// when they carried a token.
  Texts traffic();
  /// The same, whole.
  std::vector<EmulatorRequest> requests();
  /// The token that the keychain holds; empty when there is none.
  [[nodiscard]] std::string storedToken() const;

  TemporaryDirectory files;
  std::shared_ptr<ManualClock> clock;
  EmulatorThread emulator;
  Runner runner;
  std::shared_ptr<InMemoryKeychain> keychain = std::make_shared<InMemoryKeychain>();
  std::shared_ptr<RecordingLogger> logger;
  std::shared_ptr<RecordingMonitor> monitor = std::make_shared<RecordingMonitor>();
  std::shared_ptr<Firebase> firebase = std::make_shared<Firebase>(keychain);
  std::shared_ptr<Texts> outcomes = std::make_shared<Texts>();
  std::shared_ptr<MobileApiClient> client;

 private:
  static awaitable<void> readBobsPost(ContentDomain content);

  bool redactsSecrets_;
  std::size_t seen_ = 0;
  nlohmann::json latest_;
};

}  // namespace ZAK::Tests
