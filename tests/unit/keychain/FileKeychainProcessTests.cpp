#include "support/ChildProcess.hpp"
#include "support/TemporaryDirectory.hpp"

#include <zvapikit/keychain/FileKeychain.hpp>

#include <gtest/gtest.h>

#include <chrono>
#include <random>

namespace ZAK {
namespace {

const KeychainSettings settings{.service = "com.example.service", .accessGroup = "group.Example"};

/// Large enough that a write takes a while.
const std::string first(200'000, 'a');
const std::string second(300'000, 'b');

/// Writes the two in turn, starting with `next`, until it is killed, or a write fails.
std::function<int()> writing(FileKeychain& keychain, const std::string& next) {
  return [&keychain, at = &next]() mutable {
    for (;; at = at == &first ? &second : &first) keychain.set(*at, "key");
    return 0;
  };
}

TEST(FileKeychainProcessTest, aWriterKilledAtAnyMomentLeavesAWholeItem) {
  constexpr int rounds = 200;
  const Tests::TemporaryDirectory root;
  FileKeychain keychain(settings, root.path());
  const auto start = std::chrono::steady_clock::now();
  keychain.set(first, "key");
  const std::chrono::duration<double, std::micro> write = std::chrono::steady_clock::now() - start;
  std::optional<std::string> before = first;
  std::mt19937 random(1);
  std::uniform_int_distribution<useconds_t> microseconds(0, static_cast<useconds_t>(2000 + 4 * write.count()));
  int replaced = 0;
  for (int round = 0; round < rounds; ++round) {
    Tests::ChildProcess writer(writing(keychain, before == first ? second : first));
    ::usleep(microseconds(random));
    ASSERT_TRUE(writer.kill());
    auto after = keychain.data("key");  // fails when the file is not whole
    ASSERT_TRUE(after == first || after == second) << "round " << round;
    replaced += after != before ? 1 : 0;
    before = std::move(after);
  }
  EXPECT_GT(replaced, 0) << "the writers did write";
  EXPECT_LT(replaced, rounds) << "and did not end before they were killed";
}

TEST(FileKeychainProcessTest, twoWritersNeverMixTheirItems) {
  const Tests::TemporaryDirectory root;
  FileKeychain keychain(settings, root.path());
  keychain.set(first, "key");
  Tests::ChildProcess one(writing(keychain, first));
  Tests::ChildProcess other(writing(keychain, second));
  int seen[2] = {0, 0};
  for (int i = 0; i < 300; ++i) {
    const auto data = keychain.data("key");
    EXPECT_TRUE(data == first || data == second);
    ++seen[data == first ? 0 : 1];
  }
  EXPECT_TRUE(one.kill());
  EXPECT_TRUE(other.kill());
  EXPECT_GT(seen[0], 0);
  EXPECT_GT(seen[1], 0);
  keychain.set("last", "key");
  EXPECT_EQ(keychain.data("key"), "last");
}

}  // namespace
}  // namespace ZAK
