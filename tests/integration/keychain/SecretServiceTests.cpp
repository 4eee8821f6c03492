#include "Session.hpp"
#include "keychain/SecretServiceKeychain.hpp"
#include "keychain/SelectedKeychain.hpp"
#include "support/KeychainFailure.hpp"
#include "support/TemporaryDirectory.hpp"

#include <zvapikit/keychain/FileKeychain.hpp>

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

namespace ZAK {
namespace {

using namespace std::chrono_literals;
using Testing::failureOf;
using Testing::KeyringDaemon;
using Testing::UnhelpfulService;
using Clock = std::chrono::steady_clock;

const KeychainSettings settings{.service = "com.example.service", .accessGroup = "group.Example"};

template <class Operation>
std::chrono::milliseconds timeOf(Operation operation) {
  const auto start = Clock::now();
  operation();
  return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start);
}

/// Sets a variable for the life of the object.
class Environment {
 public:
  Environment(const char* name, const char* value) : name_(name), before_(g_getenv(name)) { ::setenv(name, value, 1); }
  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;
  ~Environment() { ::setenv(name_, before_.c_str(), 1); }

 private:
  const char* name_;
  std::string before_;
};

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

class SecretServiceTest : public testing::Test {
 protected:
  Testing::TemporaryDirectory home_;
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

TEST_F(SecretServiceTest, refusesWhatCannotBeStored) {
  SecretServiceKeychain keychain(settings);
  for (const std::string& key : {std::string(), std::string("a\0b", 3), std::string("\xff")}) {
    EXPECT_EQ(failureOf([&] { keychain.set("x", key); }), KeychainStatus::param);
    EXPECT_EQ(failureOf([&] { static_cast<void>(keychain.data(key)); }), KeychainStatus::param);
  }
  EXPECT_EQ(failureOf([&] { keychain.set(std::string(FileKeychain::maximumSize + 1, 'x'), "key"); }),
            KeychainStatus::param);
}

TEST_F(SecretServiceTest, aLockedItemIsNotAnAbsentOne) {
  SecretServiceKeychain keychain(settings);
  {
    KeyringDaemon daemon(home_.path());
    keychain.set("old", "key");
    daemon.lock();
    for (const Operation& operation : operations) {
      EXPECT_EQ(failureOf([&] { operation.run(keychain); }), KeychainStatus::interactionNotAllowed) << operation.name;
    }
    EXPECT_EQ(keychain.data("other key"), std::nullopt);
  }
  const KeyringDaemon daemon(home_.path());
  EXPECT_EQ(keychain.data("key"), "old") << "failed operations change nothing, and are no reason to stay away";
}

TEST_F(SecretServiceTest, withoutADefaultKeyringNothingIsFoundAndNothingCanBeStored) {
  const KeyringDaemon daemon(home_.path(), KeyringDaemon::Login::none);
  SecretServiceKeychain keychain(settings);
  EXPECT_EQ(keychain.data("key"), std::nullopt);
  keychain.remove("key");
  EXPECT_EQ(failureOf([&] { keychain.set("new", "key"); }), KeychainStatus::noDefaultKeychain);
}

TEST_F(SecretServiceTest, withoutServiceOrBusItFailsAtOnce) {
  struct Case {
    const char* name;
    const char* address;
  };
  const std::string session = g_getenv("DBUS_SESSION_BUS_ADDRESS");
  const Case cases[] = {
      {"no service", session.c_str()}, {"no bus", "unix:path=/nowhere/bus"}, {"nonsense for a bus", "nonsense"}};
  for (const Case& c : cases) {
    const Environment environment("DBUS_SESSION_BUS_ADDRESS", c.address);
    SecretServiceKeychain keychain(settings);
    for (const Operation& operation : operations) {
      const auto time =
          timeOf([&] { EXPECT_EQ(failureOf([&] { operation.run(keychain); }), KeychainStatus::notAvailable); });
      EXPECT_LT(time, 2s) << c.name << ", " << operation.name;
    }
    EXPECT_EQ(failureOf([&] { keychain.set("x", "key"); }), KeychainStatus::notAvailable);
  }
}

TEST_F(SecretServiceTest, concurrentCallersSeeWholeItems) {
  const KeyringDaemon daemon(home_.path());
  SecretServiceKeychain keychain(settings);
  const std::string first(5000, 'a');
  const std::string second(70, 'b');
  std::atomic<int> wrong = 0;
  const auto caller = [&](const std::string& own) {
    for (int i = 0; i < 15; ++i) {
      if (const auto failure = failureOf([&] {
            keychain.set(own, "key");
            const auto data = keychain.data("key");
            if (data && data != first && data != second) ++wrong;
            keychain.remove("key");
          })) {
        ++wrong;
        ADD_FAILURE() << message(*failure);
      }
    }
  };
  std::thread other(caller, second);
  caller(first);
  other.join();
  EXPECT_EQ(wrong, 0);
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
  for (const Operation& operation : operations) {
    const auto time =
        timeOf([&] { EXPECT_EQ(failureOf([&] { operation.run(keychain); }), KeychainStatus::notAvailable); });
    EXPECT_LT(time, 1s) << operation.name;
  }
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
  for (const Operation& operation : operations) {
    EXPECT_LT(timeOf([&] { expectUnanswered(operation); }), 200ms) << operation.name;
  }
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

TEST_F(PromptTest, aPromptDismissedTooLateIsNotShownAgainForAMinute) {
  expectUnanswered(operations[0]);
  service_->endPrompt(true);
  for (int i = 0; i < 20; ++i) {
    expectUnanswered(operations[0]);
    std::this_thread::sleep_for(5ms);
  }
  EXPECT_EQ(service_->calls("Prompt"), 1U);
  now_ += 1min;
  expectUnanswered(operations[0]);
  EXPECT_EQ(service_->calls("Prompt"), 2U);
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

TEST_F(SecretServiceTest, whereItemsAreStaysWhereTheyWerePutFirst) {
  const auto directory = home_.path() / "items";
  // A handle of its own for each line, as another process would have.
  const auto keychain = [&](std::chrono::milliseconds bound = 5s) {
    return std::make_unique<SelectedKeychain>(
        settings, directory, std::make_shared<SecretServiceKeychain>(settings, SecretServiceLimits{.call = bound}));
  };
  {
    const KeyringDaemon daemon(home_.path());
    keychain()->set("secret", "key");
    EXPECT_EQ(keychain()->data("key"), "secret");
    EXPECT_EQ(SecretServiceKeychain(settings).data("key"), "secret");
  }
  FileKeychain(settings, directory).set("from another time", "key");
  for (const Operation& operation : operations) {
    EXPECT_EQ(failureOf([&] { operation.run(*keychain()); }), KeychainStatus::notAvailable) << operation.name;
  }
  {
    const UnhelpfulService service(UnhelpfulService::Behaviour::silent);
    EXPECT_EQ(failureOf([&] { static_cast<void>(keychain(100ms)->data("key")); }), KeychainStatus::notAvailable);
  }
  const KeyringDaemon daemon(home_.path());
  EXPECT_EQ(keychain()->data("key"), "secret");
}

TEST_F(SecretServiceTest, filesServeWhereNoServiceAnswersAndGoOnServing) {
  for (const bool silent : {false, true}) {
    const auto directory = home_.path() / (silent ? "beside a silent one" : "alone");
    const auto open = [&] {
      return std::make_unique<SelectedKeychain>(
          settings, directory, std::make_shared<SecretServiceKeychain>(settings, SecretServiceLimits{.call = 300ms}));
    };
    {
      const auto service = silent ? std::make_unique<UnhelpfulService>(UnhelpfulService::Behaviour::silent) : nullptr;
      open()->set("in a file", "key");
    }
    const KeyringDaemon daemon(home_.path());
    EXPECT_EQ(open()->data("key"), "in a file");
    EXPECT_EQ(SecretServiceKeychain(settings).data("key"), std::nullopt);
  }
}

}  // namespace
}  // namespace ZAK
