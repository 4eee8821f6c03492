#include "support/TemporaryDirectory.hpp"

#include <zvapikit/platform/TimeZone.hpp>

#include <gtest/gtest.h>

#include <optional>

namespace ZAK {
namespace {

TEST(TimeZoneTest, variableThenLocaltimeThenFileThenGMT) {
  struct Case {
    std::string tz;
    std::optional<std::string> localtime;  ///< target of the link
    std::optional<std::string> timezone;   ///< content of the file
    std::string expected;
  };
  const std::string rome = "/usr/share/zoneinfo/Europe/Rome";
  const Case cases[] = {
      {"Europe/Paris", rome, "Asia/Tokyo\n", "Europe/Paris"},
      {":Europe/Paris", rome, std::nullopt, "Europe/Paris"},
      {":/usr/share/zoneinfo/Europe/Paris", rome, std::nullopt, "Europe/Paris"},
      {"/usr/share/zoneinfo/posix/Europe/Paris", rome, std::nullopt, "Europe/Paris"},
      // What is no zone of the database does not count, wherever it points.
      {"Europe/Atlantis", rome, std::nullopt, "Europe/Rome"},
      {"Europe", rome, std::nullopt, "Europe/Rome"},
      {"zone.tab", rome, std::nullopt, "Europe/Rome"},
      {"notazone", rome, std::nullopt, "Europe/Rome"},
      {"CET-1CEST,M3.5.0,M10.5.0/3", rome, std::nullopt, "Europe/Rome"},
      {"../zoneinfo/Europe/Paris", rome, std::nullopt, "Europe/Rome"},
      {"Europe/Paris\r\nX: 1", rome, std::nullopt, "Europe/Rome"},
      {"/etc/passwd", rome, std::nullopt, "Europe/Rome"},
      {"", rome, "Asia/Tokyo\n", "Europe/Rome"},
      {"", "../usr/share/zoneinfo/Etc/GMT+5", std::nullopt, "Etc/GMT+5"},
      {"", "/somewhere/else", "Asia/Tokyo\n", "Asia/Tokyo"},
      {"", "/usr/share/zoneinfo/bad name\n", "Asia/Tokyo\n", "Asia/Tokyo"},
      {"", std::nullopt, "Asia/Tokyo", "Asia/Tokyo"},
      {"", std::nullopt, "\n", "GMT"},
      {"", std::nullopt, "/etc/passwd\n", "GMT"},
      {"", std::nullopt, std::nullopt, "GMT"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.tz + "|" + c.localtime.value_or("-") + "|" + c.timezone.value_or("-"));
    const Testing::TemporaryDirectory root;
    root.write("usr/share/zoneinfo/Europe/Paris", "TZif2...");
    root.write("usr/share/zoneinfo/notazone", "# text");
    if (c.timezone) root.write("etc/timezone", *c.timezone);
    std::filesystem::create_directories(root.path() / "etc");
    if (c.localtime) std::filesystem::create_symlink(*c.localtime, root.path() / "etc/localtime");
    EXPECT_EQ(timeZoneIdentifier({.tz = c.tz, .root = root.path()}), c.expected);
  }
}

}  // namespace
}  // namespace ZAK
