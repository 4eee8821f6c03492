#include "support/TemporaryDirectory.hpp"

#include <zvapikit/platform/Directories.hpp>

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

namespace ZAK {
namespace {

namespace fs = std::filesystem;

TEST(DirectoriesTest, defaultsComeFromEnvironmentAndBundle) {
  struct Case {
    DirectoryEnvironment environment;
    std::string identifier;
    std::string documents;
    std::string temporary;
  };
  const Case cases[] = {
      {{"/data", "/home/u", "/var/tmp", 7}, "a.b", "/data/a.b/Documents", "/var/tmp/zvapikit-7-a.b"},
      {{"relative", "/home/u", "relative", 0}, "a.b", "/home/u/.local/share/a.b/Documents", "/tmp/zvapikit-0-a.b"},
      {{"/data", "", "", 7}, "../../etc", "/data/.._.._etc/Documents", "/tmp/zvapikit-7-.._.._etc"},
      {{"/data", "", "", 7}, "..", "/data/unknown/Documents", "/tmp/zvapikit-7-unknown"},
      {{"", "", "", 7}, "a.b", "", "/tmp/zvapikit-7-a.b"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.identifier);
    const BundleInfo bundle{.identifier = c.identifier};
    const Directories directories = Directories{}.resolved(bundle, c.environment);
    EXPECT_EQ(directories.documents, c.documents);
    EXPECT_EQ(directories.temporary, c.temporary);
  }
  const Directories own = Directories{.documents = "/d", .temporary = "/t"}.resolved({}, {});
  EXPECT_EQ(own.documents, "/d");
  EXPECT_EQ(own.temporary, "/t");
}

fs::perms modeOf(const fs::path& path) { return fs::status(path).permissions(); }

TEST(DirectoriesTest, createsForTheUserAlone) {
  const Tests::TemporaryDirectory root;
  const mode_t umask = ::umask(0);
  Directories::createPrivate(root.path() / "a/b/");
  ::umask(umask);
  EXPECT_EQ(modeOf(root.path() / "a"), fs::perms::owner_all);
  EXPECT_EQ(modeOf(root.path() / "a/b"), fs::perms::owner_all);

  fs::permissions(root.path() / "a/b", fs::perms::all);
  fs::permissions(root.path() / "a", fs::perms::all);
  Directories::createPrivate(root.path() / "a/b");
  EXPECT_EQ(modeOf(root.path() / "a/b"), fs::perms::owner_all) << "an open directory is closed";
  EXPECT_EQ(modeOf(root.path() / "a"), fs::perms::all) << "its parent is not our business";
}

TEST(DirectoriesTest, refusesLinksFilesAndForeignDirectories) {
  const Tests::TemporaryDirectory root;
  fs::create_directory(root.path() / "target");
  fs::create_directory_symlink(root.path() / "target", root.path() / "link");
  fs::create_directory_symlink(root.path() / "nowhere", root.path() / "dangling");
  root.write("file", "");
  for (const char* name : {"link", "link/", "link/.", "link/./", "dangling", "file", "file/below"}) {
    EXPECT_THROW(Directories::createPrivate(root.path() / name), fs::filesystem_error) << name;
  }
  EXPECT_THROW(Directories::createPrivate(""), fs::filesystem_error);
  EXPECT_FALSE(fs::exists(root.path() / "nowhere"));

  fs::permissions(root.path() / "target", fs::perms::all | fs::perms::sticky_bit);
  EXPECT_THROW(Directories::createPrivate(root.path() / "target"), fs::filesystem_error);
  EXPECT_EQ(modeOf(root.path() / "target"), fs::perms::all | fs::perms::sticky_bit) << "others keep their /tmp";

  // Somebody else was there first: only root can set that up, and only others can meet it at the root directory.
  const fs::path foreign = ::geteuid() == 0 ? root.path() / "foreign" : fs::path("/");
  if (::geteuid() == 0) {
    fs::create_directory(foreign);
    ASSERT_EQ(::chown(foreign.c_str(), 12345, 12345), 0);
  }
  EXPECT_THROW(Directories::createPrivate(foreign), fs::filesystem_error);
}

}  // namespace
}  // namespace ZAK
