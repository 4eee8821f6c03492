#include "platform/FileReplacement.hpp"
#include "support/TemporaryDirectory.hpp"

#include <gtest/gtest.h>

namespace ZAK {
namespace {

namespace fs = std::filesystem;

TEST(FileReplacement, removesWhatTheDeadLeftAndNothingElse) {
  const Tests::TemporaryDirectory root;
  const fs::path file = root.write("file", "old");
  const auto count = [&] { return std::distance(fs::directory_iterator(root.path()), {}); };
  const std::string digits = "0123456789abcdef";
  root.write(".file." + digits + ".tmp", "half");
  const std::string others[] = {".file.jpg", ".file.0123456789abcdeg.tmp", ".file." + digits + ".tmp~",
                                ".file2." + digits + ".tmp", ".other." + digits + ".tmp"};
  for (const std::string& other : others) root.write(other, "someone's");
  FileReplacement living(file);
  FileReplacement second(file);
  EXPECT_EQ(count(), 3 + std::ssize(others)) << "the file, two that are written, and the others";
  second.write("second");
  second.replace();
  living.write("first");
  living.replace();
  EXPECT_EQ(Tests::contentOf(file), "first");
  EXPECT_EQ(count(), 1 + std::ssize(others));
}

}  // namespace
}  // namespace ZAK
