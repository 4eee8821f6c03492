#include "support/TemporaryDirectory.hpp"

#include <zvapikit/keychain/FileKeychain.hpp>

#include <gtest/gtest.h>

#include <csignal>
#include <random>
#include <sys/wait.h>
#include <unistd.h>

namespace ZAK {
namespace {

const KeychainSettings settings{.service = "com.example.service", .accessGroup = "group.Example"};

/// Large enough that a write takes a while.
const std::string first(200'000, 'a');
const std::string second(300'000, 'b');

/// Another process that writes the two in turn until it is killed, starting with `start`.
pid_t startWriter(const std::filesystem::path& directory, const std::string& start) {
  const pid_t child = ::fork();
  if (child != 0) return child;
  FileKeychain keychain(settings, directory);
  try {
    for (const std::string* next = &start;; next = next == &first ? &second : &first) keychain.set(*next, "key");
  } catch (...) {
    ::_exit(1);
  }
}

/// Kills it; false when it had ended before, which a writer never does unless a write failed.
bool kill(pid_t child) {
  int status = 0;
  return child > 0 && ::kill(child, SIGKILL) == 0 && ::waitpid(child, &status, 0) == child && WIFSIGNALED(status);
}

TEST(FileKeychainProcessTest, aWriterKilledAtAnyMomentLeavesAWholeItem) {
  constexpr int rounds = 200;
  const Testing::TemporaryDirectory root;
  FileKeychain keychain(settings, root.path());
  keychain.set(first, "key");
  std::optional<std::string> before = first;
  std::mt19937 random(1);
  std::uniform_int_distribution<useconds_t> microseconds(0, 5000);
  int replaced = 0;
  for (int round = 0; round < rounds; ++round) {
    const pid_t writer = startWriter(root.path(), before == first ? second : first);
    ::usleep(microseconds(random));
    ASSERT_TRUE(kill(writer));
    auto after = keychain.data("key");  // fails when the file is not whole
    ASSERT_TRUE(after == first || after == second) << "round " << round;
    replaced += after != before ? 1 : 0;
    before = std::move(after);
  }
  EXPECT_GT(replaced, 0) << "the writers did write";
  EXPECT_LT(replaced, rounds) << "and did not end before they were killed";
}

TEST(FileKeychainProcessTest, twoWritersNeverMixTheirItems) {
  const Testing::TemporaryDirectory root;
  FileKeychain keychain(settings, root.path());
  keychain.set(first, "key");
  const pid_t one = startWriter(root.path(), first);
  const pid_t other = startWriter(root.path(), second);
  int seen[2] = {0, 0};
  for (int i = 0; i < 300; ++i) {
    const auto data = keychain.data("key");
    EXPECT_TRUE(data == first || data == second);
    ++seen[data == first ? 0 : 1];
  }
  EXPECT_TRUE(kill(one));
  EXPECT_TRUE(kill(other));
  EXPECT_GT(seen[0], 0);
  EXPECT_GT(seen[1], 0);
  keychain.set("last", "key");
  EXPECT_EQ(keychain.data("key"), "last");
}

}  // namespace
}  // namespace ZAK
