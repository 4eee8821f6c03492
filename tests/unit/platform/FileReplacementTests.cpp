#include "platform/FileReplacement.hpp"
#include "support/TemporaryDirectory.hpp"

#include <gmock/gmock.h>

#include <string>
#include <sys/fsuid.h>
#include <unistd.h>
#include <vector>

namespace ZAK {
namespace {

namespace fs = std::filesystem;
using testing::UnorderedElementsAre;

uid_t ordinaryUser() { return ::geteuid() == 0 ? 65534 : ::geteuid(); }

class FileReplacementTest : public testing::Test {
 protected:
  std::vector<std::string> names() const {
    std::vector<std::string> result;
    for (const auto& entry : fs::directory_iterator(root_.path())) result.push_back(entry.path().filename());
    return result;
  }

  Tests::TemporaryDirectory root_;
  fs::path file_ = root_.write("file", "old");
};

TEST_F(FileReplacementTest, isAllOrNothing) {
  {
    FileReplacement dropped(file_);
    dropped.write("half");
    EXPECT_EQ(names().size(), 2U);
  }
  EXPECT_THAT(names(), UnorderedElementsAre("file"));
  EXPECT_EQ(Tests::contentOf(file_), "old");
  FileReplacement kept(file_);
  kept.write("whole ");
  kept.write("file");
  EXPECT_EQ(Tests::contentOf(file_), "old");
  kept.replace();
  EXPECT_THAT(names(), UnorderedElementsAre("file"));
  EXPECT_EQ(Tests::contentOf(file_), "whole file");
  EXPECT_EQ(fs::status(file_).permissions(), fs::perms::owner_read | fs::perms::owner_write);

  const fs::path link = root_.path() / std::string(255, 'l');
  fs::create_symlink(file_, link);
  FileReplacement linked(link);
  linked.write("in the link's place");
  linked.replace();
  EXPECT_EQ(Tests::contentOf(file_), "whole file");
  EXPECT_EQ(Tests::contentOf(link), "in the link's place");
}

TEST_F(FileReplacementTest, whatCannotBeWrittenLeavesTheOldFileAndNoOther) {
  fs::create_directory(root_.path() / "directory");
  for (const char* name : {"directory", "directory/", "directory/..", "missing/file", "file/file", ""}) {
    EXPECT_THROW(FileReplacement(name[0] == '\0' ? fs::path() : root_.path() / name), fs::filesystem_error) << name;
  }
  EXPECT_THROW(FileReplacement(root_.path() / std::string(256, 'n')), fs::filesystem_error);
  {
    FileReplacement beaten(file_);
    fs::remove(file_);
    fs::create_directory(file_);
    EXPECT_THROW(beaten.replace(), fs::filesystem_error);
    fs::remove(file_);
    root_.write("file", "old");
  }
  fs::permissions(root_.path(), fs::perms::owner_read | fs::perms::owner_exec);
  ASSERT_EQ(::chown(root_.path().c_str(), ordinaryUser(), ::getegid()), 0);
  // Nothing is forbidden to root, but to the thread that acts for somebody else.
  ::setfsuid(ordinaryUser());
  EXPECT_THROW(FileReplacement{file_}, fs::filesystem_error);
  ::setfsuid(::geteuid());
  EXPECT_THAT(names(), UnorderedElementsAre("file", "directory"));
  EXPECT_EQ(Tests::contentOf(file_), "old");
  fs::permissions(root_.path(), fs::perms::owner_all);
}

TEST_F(FileReplacementTest, removesWhatTheDeadLeftAndNothingElse) {
  const std::string digits = "0123456789abcdef";
  root_.write(".file." + digits + ".tmp", "half");
  const std::string others[] = {".file.jpg", ".file.0123456789abcdeg.tmp", ".file." + digits + ".tmp~",
                                ".file2." + digits + ".tmp", ".other." + digits + ".tmp"};
  for (const std::string& other : others) root_.write(other, "someone's");
  FileReplacement living(file_);
  FileReplacement second(file_);
  EXPECT_EQ(names().size(), 3 + std::size(others)) << "the file, two that are written, and the others";
  second.write("second");
  second.replace();
  living.write("first");
  living.replace();
  EXPECT_EQ(Tests::contentOf(file_), "first");
  EXPECT_EQ(names().size(), 1 + std::size(others));
}

}  // namespace
}  // namespace ZAK
