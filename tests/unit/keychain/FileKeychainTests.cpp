#include "support/KeychainFailure.hpp"
#include "support/TemporaryDirectory.hpp"

#include <zvapikit/keychain/FileKeychain.hpp>

#include <gtest/gtest.h>

#include <functional>
#include <sys/stat.h>
#include <vector>

namespace ZAK {
namespace {

namespace fs = std::filesystem;

const KeychainSettings settings{.service = "com.example.service", .accessGroup = "group.Example"};
constexpr KeychainOptions ignoring{.ignoreSynchronizable = true};

using Tests::failureOf;

class FileKeychainTest : public testing::Test {
 protected:
  Tests::TemporaryDirectory root_;
  fs::path directory_ = root_.path() / "data/items";
  FileKeychain keychain_{settings, directory_};

  std::vector<fs::path> files() const {
    std::vector<fs::path> result;
    for (const auto& entry : fs::directory_iterator(directory_)) result.push_back(entry.path());
    return result;
  }
  fs::path onlyFile() const {
    const auto all = files();
    EXPECT_EQ(all.size(), 1U);
    return all.at(0);
  }
};

TEST_F(FileKeychainTest, keepsItemsApartByGroupAndKey) {
  EXPECT_EQ(keychain_.data("a"), std::nullopt);
  keychain_.remove("a");
  EXPECT_FALSE(fs::exists(directory_)) << "looking creates nothing";

  const std::string binary("\0\xff{\n", 4);
  FileKeychain otherGroup({.service = settings.service, .accessGroup = "group.Other"}, directory_);
  const std::vector<std::string> keys{"a", "A", "../a", "a/b", ".", "a+b", "a%2Bb", "\xc3\xa9", std::string("a\0", 2)};
  for (const auto& key : keys) keychain_.set(key + binary, key, ignoring);
  otherGroup.set("other", "a");
  for (const auto& key : keys) EXPECT_EQ(keychain_.data(key, ignoring), key + binary) << key;
  EXPECT_EQ(otherGroup.data("a"), "other");
  EXPECT_EQ(files().size(), keys.size() + 1) << "nothing but the items, all in this directory";

  keychain_.set("", "a");
  EXPECT_EQ(FileKeychain(settings, directory_).data("a"), "") << "an empty item is an item, also for a new handle";
  keychain_.remove("a", ignoring);
  EXPECT_EQ(keychain_.data("a"), std::nullopt);
  EXPECT_EQ(keychain_.data("A"), "A" + binary);
  EXPECT_EQ(otherGroup.data("a"), "other");
}

TEST_F(FileKeychainTest, onlyTheUserCanRead) {
  const mode_t umask = ::umask(0);
  keychain_.set("secret", "key");
  ::umask(umask);
  EXPECT_EQ(fs::status(directory_).permissions(), fs::perms::owner_all);
  EXPECT_EQ(fs::status(onlyFile()).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(FileKeychainTest, refusesWhatCannotBeStored) {
  EXPECT_EQ(failureOf([&] { keychain_.set("x", ""); }), KeychainStatus::param);
  EXPECT_EQ(failureOf([&] { keychain_.set("x", std::string(250, 'k')); }), KeychainStatus::param);
  EXPECT_EQ(failureOf([&] { keychain_.set(std::string(FileKeychain::maximumSize + 1, 'x'), "key"); }),
            KeychainStatus::param);
  const std::string longest(FileKeychain::maximumSize, 'x');
  keychain_.set(longest, "key");
  EXPECT_EQ(keychain_.data("key"), longest);
  EXPECT_EQ(failureOf([] { FileKeychain(settings, "").set("x", "key"); }), KeychainStatus::io);
}

TEST_F(FileKeychainTest, aDamagedFileIsNeverAnItemAndTheNextWriteMendsIt) {
  keychain_.set("the item's data", "key");
  const fs::path file = onlyFile();
  const std::string whole = Tests::contentOf(file);
  const auto expectDamaged = [&](const std::string& content) {
    root_.write(file.lexically_relative(root_.path()), content);
    EXPECT_EQ(failureOf([&] { static_cast<void>(keychain_.data("key")); }), KeychainStatus::decode);
  };
  for (std::size_t length = 0; length < whole.size(); ++length) {
    SCOPED_TRACE(length);
    expectDamaged(whole.substr(0, length));
    std::string flipped = whole;
    flipped[length] ^= 1;
    expectDamaged(flipped);
  }
  expectDamaged(whole + '\0');
  expectDamaged(std::string(whole.size(), '\0'));

  keychain_.set("new", "key");
  EXPECT_EQ(keychain_.data("key"), "new");
  keychain_.set("other item", "other");
  for (const fs::path& each : files()) {
    if (each != file) fs::rename(each, file);
  }
  EXPECT_EQ(failureOf([&] { static_cast<void>(keychain_.data("key")); }), KeychainStatus::decode)
      << "another item's file under this item's name";
}

TEST_F(FileKeychainTest, aFileThatIsNotTheUsersAloneIsNotRead) {
  const fs::path outside = root_.path() / "outside";
  const std::function<void(const fs::path&)> cases[] = {
      [&](const fs::path& file) {
        fs::rename(file, outside);
        fs::create_symlink(outside, file);  // to a sound item
      },
      [](const fs::path& file) { fs::permissions(file, fs::perms::group_read, fs::perm_options::add); },
      [](const fs::path& file) {
        fs::remove(file);
        ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
      },
  };
  for (const auto& spoil : cases) {
    keychain_.set("data", "key");
    spoil(onlyFile());
    EXPECT_EQ(failureOf([&] { static_cast<void>(keychain_.data("key")); }), KeychainStatus::io);
    keychain_.set("mended", "key");
    EXPECT_EQ(keychain_.data("key"), "mended");
    keychain_.remove("key");
  }
  EXPECT_NE(Tests::contentOf(outside).find("data"), std::string::npos) << "the link's target was left alone";
}

}  // namespace
}  // namespace ZAK
