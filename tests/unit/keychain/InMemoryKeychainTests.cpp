#include <zvapikit/keychain/InMemoryKeychain.hpp>

#include <gtest/gtest.h>

namespace ZAK {
namespace {

TEST(InMemoryKeychainTest, failsAsOftenAsAskedAndThenWorksAgain) {
  InMemoryKeychain keychain;
  keychain.set("old", "key");
  keychain.failNext(KeychainStatus::interactionNotAllowed, 3);
  const auto expectFailure = [](auto operation) {
    try {
      operation();
      ADD_FAILURE() << "no failure";
    } catch (const KeychainError& error) {
      EXPECT_EQ(error.status(), KeychainStatus::interactionNotAllowed);
      EXPECT_STREQ(error.what(), "User interaction is not allowed.");
    }
  };
  expectFailure([&] { keychain.set("new", "key"); });
  expectFailure([&] { keychain.remove("key"); });
  expectFailure([&] { static_cast<void>(keychain.data("key")); });

  EXPECT_EQ(keychain.data("key"), "old") << "failed operations changed nothing";
  keychain.remove("key");
  keychain.remove("key");
  EXPECT_EQ(keychain.data("key"), std::nullopt);
  const auto counts = keychain.counts();
  EXPECT_EQ(counts.reads, 3U);
  EXPECT_EQ(counts.writes, 2U);
  EXPECT_EQ(counts.removals, 3U);
}

}  // namespace
}  // namespace ZAK
