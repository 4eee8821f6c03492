#include <zvapikit/platform/BundleInfo.hpp>
#include <zvapikit/platform/OperatingSystemVersion.hpp>

#include <gtest/gtest.h>

namespace ZAK {
namespace {

TEST(OperatingSystemVersionTest, readsKernelReleases) {
  const std::pair<std::string_view, std::string> cases[] = {
      {"6.1.0-18-amd64", "6.1.0"},
      {"5.15.167.4-microsoft-standard-WSL2", "5.15.167"},
      {"6.1", "6.1.0"},
      {"6.1-rc3", "6.1.0"},
      {"6.x.3", "6.0.0"},
      {"6.-1.3", "6.0.0"},
      {"99999999999.1.2", "0.0.0"},
      {"", "0.0.0"},
      {"generic", "0.0.0"},
  };
  for (const auto& [release, expected] : cases) {
    EXPECT_EQ(OperatingSystemVersion::fromRelease(release).description(), expected) << release;
  }
  EXPECT_GT(OperatingSystemVersion::current().major, 0);
}

TEST(BundleInfoTest, whatCannotStandInAHeaderIsUnknown) {
  const BundleInfo given{
      .executable = "My App\xc3\xa9", .shortVersion = "1\r\nX: 1", .identifier = "", .version = std::string("4\0", 2)};
  const BundleInfo sanitized = given.sanitized();
  EXPECT_EQ(sanitized.executable, given.executable);
  EXPECT_EQ(sanitized.shortVersion, "unknown");
  EXPECT_EQ(sanitized.identifier, "unknown");
  EXPECT_EQ(sanitized.version, "unknown");
}

}  // namespace
}  // namespace ZAK
