#include "support/TemporaryDirectory.hpp"

#include <zvapikit/keychain/FileKeychain.hpp>

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <random>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace ZAK {
namespace {

const KeychainSettings settings{.service = "com.example.service", .accessGroup = "group.Example"};

/// Large enough that a write takes a while.
const std::string first(200'000, 'a');
const std::string second(300'000, 'b');

/// Another process that writes the two in turn, starting with `start`, until it is killed.
class Writer {
 public:
  Writer(const std::filesystem::path& directory, const std::string& start) : child_(::fork()) {
    if (child_ != 0) return;
    FileKeychain keychain(settings, directory);
    try {
      for (const std::string* next = &start;; next = next == &first ? &second : &first) keychain.set(*next, "key");
    } catch (...) {
      ::_exit(1);
    }
  }
  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;
  ~Writer() { static_cast<void>(kill()); }

  /// False when it had ended before, which a writer never does unless a write failed.
  [[nodiscard]] bool kill() {
    const pid_t child = std::exchange(child_, -1);
    int status = 0;
    return child > 0 && ::kill(child, SIGKILL) == 0 && ::waitpid(child, &status, 0) == child && WIFSIGNALED(status);
  }

 private:
  pid_t child_;
};

TEST(FileKeychainProcessTest, aWriterKilledAtAnyMomentLeavesAWholeItem) {
  constexpr int rounds = 200;
  const Testing::TemporaryDirectory root;
  FileKeychain keychain(settings, root.path());
  const auto start = std::chrono::steady_clock::now();
  keychain.set(first, "key");
  const std::chrono::duration<double, std::micro> write = std::chrono::steady_clock::now() - start;
  std::optional<std::string> before = first;
  std::mt19937 random(1);
  std::uniform_int_distribution<useconds_t> microseconds(0, static_cast<useconds_t>(2000 + 4 * write.count()));
  int replaced = 0;
  for (int round = 0; round < rounds; ++round) {
    Writer writer(root.path(), before == first ? second : first);
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
  const Testing::TemporaryDirectory root;
  FileKeychain keychain(settings, root.path());
  keychain.set(first, "key");
  Writer one(root.path(), first);
  Writer other(root.path(), second);
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
