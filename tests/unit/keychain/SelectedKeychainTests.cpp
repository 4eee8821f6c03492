#include "keychain/SelectedKeychain.hpp"
#include "support/ChildProcess.hpp"
#include "support/KeychainFailure.hpp"
#include "support/TemporaryDirectory.hpp"

#include <zvapikit/keychain/FileKeychain.hpp>
#include <zvapikit/keychain/InMemoryKeychain.hpp>

#include <gtest/gtest.h>

#include <list>
#include <unistd.h>
#include <vector>

namespace ZAK {
namespace {

namespace fs = std::filesystem;
using Tests::failureOf;

const KeychainSettings settings{.service = "com.example.service", .accessGroup = "group.Example"};

TEST(SelectedKeychainTest, keepsToTheRecordedBackendAndElseToTheOneThatAnswers) {
  struct Case {
    std::optional<std::string> record;
    bool answers;
    std::string recordAfter;
    std::optional<std::string> data;
    std::optional<KeychainStatus> failure;
  };
  const std::string file = "file\n";
  const std::string service = "secret-service\n";
  const Case cases[] = {
      {std::nullopt, true, service, "in the service", std::nullopt},
      {std::nullopt, false, file, "in a file", std::nullopt},
      {service, true, service, "in the service", std::nullopt},
      {service, false, service, std::nullopt, KeychainStatus::notAvailable},
      {file, true, file, "in a file", std::nullopt},
      {file, false, file, "in a file", std::nullopt},
      {"", true, "", std::nullopt, KeychainStatus::notAvailable},
      {"tomorrow's\n", true, "tomorrow's\n", std::nullopt, KeychainStatus::notAvailable},
      {std::string(1000, 'x'), true, std::string(1000, 'x'), std::nullopt, KeychainStatus::io},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.record.value_or("none") + (c.answers ? ", answers" : ", does not answer"));
    const Tests::TemporaryDirectory root;
    const fs::path directory = root.path() / "items";
    if (c.record) {
      fs::permissions(root.write("items/backend", *c.record), fs::perms::owner_read | fs::perms::owner_write);
    }
    FileKeychain(settings, directory).set("in a file", "key");
    const auto secretService = std::make_shared<InMemoryKeychain>(settings);
    secretService->set("in the service", "key");
    if (!c.answers) secretService->failNext(KeychainStatus::notAvailable, 2);

    SelectedKeychain keychain(settings, directory, secretService);
    std::optional<std::string> data;
    EXPECT_EQ(failureOf([&] { data = keychain.data("key"); }), c.failure);
    EXPECT_EQ(data, c.data) << "an item of one backend never stands in for one of another";
    EXPECT_EQ(Tests::contentOf(directory / "backend"), c.recordAfter);
  }
}

TEST(SelectedKeychainTest, looksAgainAfterAFailure) {
  const Tests::TemporaryDirectory root;
  const fs::path obstacle = root.write("items", "a file in the directory's place");
  const auto secretService = std::make_shared<InMemoryKeychain>(settings);
  SelectedKeychain keychain(settings, obstacle, secretService);
  EXPECT_EQ(failureOf([&] { keychain.set("x", "key"); }), KeychainStatus::io);
  EXPECT_EQ(secretService->counts().writes, 0U) << "what cannot be recorded is not begun";
  fs::remove(obstacle);
  keychain.set("x", "key");
  EXPECT_EQ(keychain.data("key"), "x");
}

TEST(SelectedKeychainTest, processesThatStartTogetherAgree) {
  for (int round = 0; round < 20; ++round) {
    const Tests::TemporaryDirectory root;
    int gate[2];
    ASSERT_EQ(::pipe(gate), 0);
    // Every other one finds no service. Each says by its exit code which backend it went to.
    std::list<Tests::ChildProcess> children;
    for (int i = 0; i < 4; ++i) {
      children.emplace_back([&] {
        ::close(gate[1]);
        char byte = 0;
        if (::read(gate[0], &byte, 1) != 0) return 9;
        const auto secretService = std::make_shared<InMemoryKeychain>(settings);
        if (i % 2 == 0) secretService->failNext(KeychainStatus::notAvailable, 2);
        SelectedKeychain keychain(settings, root.path() / "items", secretService);
        const auto failure = failureOf([&] { keychain.set("x", "key"); });
        return secretService->counts().writes > 0 ? 1 : failure ? 9 : 2;
      });
    }
    ::close(gate[1]);
    ::close(gate[0]);
    std::vector<int> codes;
    for (auto& child : children) codes.push_back(child.wait());
    const int recorded = Tests::contentOf(root.path() / "items/backend") == "file\n" ? 2 : 1;
    for (std::size_t i = 0; i < codes.size(); ++i) {
      // A process that comes when the service is recorded already does not choose: it finds its own service away.
      const bool late = recorded == 1 && i % 2 == 0 && codes[i] == 9;
      EXPECT_TRUE(late || codes[i] == recorded) << "process " << i << " ended with " << codes[i];
    }
  }
}

}  // namespace
}  // namespace ZAK
