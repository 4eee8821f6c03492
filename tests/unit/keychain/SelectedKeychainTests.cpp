#include "keychain/SelectedKeychain.hpp"
#include "support/KeychainFailure.hpp"
#include "support/TemporaryDirectory.hpp"

#include <zvapikit/keychain/FileKeychain.hpp>
#include <zvapikit/keychain/InMemoryKeychain.hpp>

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace ZAK
