#include "Session.hpp"
#include "keychain/SecretServiceKeychain.hpp"
#include "support/EnvironmentVariable.hpp"
#include "support/KeychainFailure.hpp"
#include "support/TemporaryDirectory.hpp"

#include <zvapikit/keychain/FileKeychain.hpp>

#include <gtest/gtest.h>

#include <functional>
#include <thread>

namespace ZAK {
namespace {

using namespace std::chrono_literals;
using Tests::failureOf;
using Tests::KeyringDaemon;
using Tests::UnhelpfulService;
using Clock = std::chrono::steady_clock;

const KeychainSettings settings{.service = "com.example.service", .accessGroup = "group.Example"};

template <class Operation>
std::chrono::milliseconds timeOf(Operation operation) {
  const auto start = Clock::now();
  operation();
  return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start);
}

/// The three operations, each to fail in the same way.
struct Operation {
  const char* name;
  void (*run)(Keychain&);
};
const Operation operations[] = {
    {"read", [](Keychain& keychain) { static_cast<void>(keychain.data("key")); }},
    {"write", [](Keychain& keychain) { keychain.set("new", "key"); }},
    {"removal", [](Keychain& keychain) { keychain.remove("key"); }},
};

/// Each operation fails with that, within the time.
void expectAllFail(Keychain& keychain, KeychainStatus status, std::chrono::milliseconds within = 2s) {
  for (const Operation& operation : operations) {
    const auto time = timeOf([&] { EXPECT_EQ(failureOf([&] { operation.run(keychain); }), status) << operation.name; });
    EXPECT_LT(time, within) << operation.name;
  }
}

class SecretServiceTest : public testing::Test {
 protected:
  Tests::TemporaryDirectory home_;
};

TEST_F(SecretServiceTest, keepsItemsApartAndBeyondTheDaemonsLife) {
  const std::string binary("\0\xff{\n", 4);
  const std::string large(FileKeychain::maximumSize, 'x');
  SecretServiceKeychain keychain(settings);
  SecretServiceKeychain otherGroup({.service = settings.service, .accessGroup = "group.Other"});
  SecretServiceKeychain otherService({.service = "com.example.other", .accessGroup = settings.accessGroup});
  {
    const KeyringDaemon daemon(home_.path());
    EXPECT_EQ(keychain.data("key"), std::nullopt);
    keychain.remove("key");
    keychain.set("old", "key");
    keychain.set(binary, "key", {.ignoreSynchronizable = true});
    keychain.set("", "empty");
    keychain.set("\xc3\xa9", "k\xc3\xa9y +/%");
    otherGroup.set("group", "key");
    otherService.set(large, "key");
  }
  const KeyringDaemon daemon(home_.path());
  EXPECT_EQ(keychain.data("key"), binary);
  EXPECT_EQ(keychain.data("empty"), "");
  EXPECT_EQ(keychain.data("k\xc3\xa9y +/%"), "\xc3\xa9");
  EXPECT_EQ(otherGroup.data("key"), "group");
  EXPECT_EQ(otherService.data("key"), large);

  keychain.remove("key");
  EXPECT_EQ(keychain.data("key"), std::nullopt);
  EXPECT_EQ(otherGroup.data("key"), "group");
  EXPECT_TRUE(otherService.data("key").has_value());
}

TEST_F(SecretServiceTest, aLockedItemIsNotAnAbsentOne) {
  SecretServiceKeychain keychain(settings);
  {
    KeyringDaemon daemon(home_.path());
    keychain.set("old", "key");
    daemon.lock();
    expectAllFail(keychain, KeychainStatus::interactionNotAllowed);
    EXPECT_EQ(keychain.data("other key"), std::nullopt);
  }
  const KeyringDaemon daemon(home_.path());
  EXPECT_EQ(keychain.data("key"), "old") << "failed operations change nothing, and are no reason to stay away";
}

TEST_F(SecretServiceTest, withoutServiceOrBusItFailsAtOnce) {
  const std::string session = g_getenv("DBUS_SESSION_BUS_ADDRESS");
  for (const char* address : {session.c_str(), "unix:path=/nowhere/bus", "nonsense"}) {
    SCOPED_TRACE(address);
    const Tests::EnvironmentVariable environment("DBUS_SESSION_BUS_ADDRESS", address);
    SecretServiceKeychain keychain(settings);
    expectAllFail(keychain, KeychainStatus::notAvailable);
  }
}

TEST_F(SecretServiceTest, aSilentServiceCostsOnePauseAMinute) {
  const UnhelpfulService service(UnhelpfulService::Behaviour::silent);
  Clock::time_point now;
  SecretServiceKeychain keychain(settings, {.now = [&now] { return now; }});
  const auto read = [&] {
    EXPECT_EQ(failureOf([&] { static_cast<void>(keychain.data("key")); }), KeychainStatus::notAvailable);
  };
  const auto first = timeOf(read);
  EXPECT_GE(first, 4900ms);
  EXPECT_LT(first, 6s);
  const auto asked = service.calls("SearchItems");
  EXPECT_GT(asked, 0U) << "the service was there and was asked";

  now += 59s;
  expectAllFail(keychain, KeychainStatus::notAvailable, 1s);
  EXPECT_EQ(service.calls("SearchItems"), asked);
  now += 2s;
  read();
  EXPECT_GT(service.calls("SearchItems"), asked);
}

/// A service that asks, and a keychain that waits for 300 ms.
class PromptTest : public testing::Test {
 protected:
  std::unique_ptr<UnhelpfulService> service_ = std::make_unique<UnhelpfulService>(UnhelpfulService::Behaviour::asks);
  Clock::time_point now_;
  SecretServiceKeychain keychain_{settings, {.call = 300ms, .now = [this] { return now_; }}};

  void expectUnanswered(const Operation& operation) {
    EXPECT_EQ(failureOf([&] { operation.run(keychain_); }), KeychainStatus::interactionNotAllowed);
  }
  /// Runs it until the thread that asked has seen the answer.
  void untilDone(const Operation& operation) {
    const auto end = Clock::now() + 10s;
    while (failureOf([&] { operation.run(keychain_); })) {
      ASSERT_LT(Clock::now(), end) << "an answer lets calls pass again";
      std::this_thread::sleep_for(5ms);
    }
  }
};

TEST_F(PromptTest, anUnansweredPromptIsAskedOnceAndItsAnswerCounts) {
  expectUnanswered(operations[0]);
  now_ += 10min;
  expectAllFail(keychain_, KeychainStatus::interactionNotAllowed, 200ms);
  EXPECT_EQ(service_->calls("Prompt"), 1U) << "a prompt on the screen is enough";
  EXPECT_EQ(service_->calls("Dismiss"), 0U) << "the user may be typing";

  service_->endPrompt();
  untilDone(operations[2]);
  EXPECT_EQ(service_->calls("Delete"), 1U);
}

TEST_F(PromptTest, whatWasGivenUpIsNotDoneOnceThePromptIsAnswered) {
  expectUnanswered(operations[1]);
  expectUnanswered(operations[2]);
  const auto tried = service_->calls("CreateItem");
  service_->endPrompt();
  untilDone(operations[2]);
  EXPECT_EQ(service_->calls("CreateItem"), tried) << "the write was told to have failed";
}

TEST_F(PromptTest, aPromptThatEndsWithoutAnAnswerFailsAtOnce) {
  const std::pair<const char*, std::function<void()>> ends[] = {
      {"dismissed", [this] { service_->endPrompt(true); }},
      {"gone with its service", [this] { service_.reset(); }},
  };
  for (const auto& [how, end] : ends) {
    for (const Operation& operation : operations) {
      SCOPED_TRACE(std::string(how) + ", " + operation.name);
      service_ = std::make_unique<UnhelpfulService>(UnhelpfulService::Behaviour::asks);
      SecretServiceKeychain keychain(settings);
      std::thread user([this, &finish = end] {
        while (service_->calls("Prompt") == 0) std::this_thread::sleep_for(1ms);
        finish();
      });
      const auto time = timeOf(
          [&] { EXPECT_EQ(failureOf([&] { operation.run(keychain); }), KeychainStatus::interactionNotAllowed); });
      user.join();
      EXPECT_LT(time, 2s);
    }
  }
}

TEST_F(PromptTest, nobodyWaitsForTheCallLeftBehind) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        expectUnanswered(operations[0]);
        std::exit(HasFailure() ? 1 : 0);
      },
      testing::ExitedWithCode(0), "");
  auto keychain = std::make_unique<SecretServiceKeychain>(settings, SecretServiceLimits{.call = 100ms});
  EXPECT_EQ(failureOf([&] { keychain->set("x", "key"); }), KeychainStatus::interactionNotAllowed);
  EXPECT_LT(timeOf([&] { keychain.reset(); }), 100ms);
  service_->endPrompt();  // the thread ends without its keychain
}

}  // namespace
}  // namespace ZAK
