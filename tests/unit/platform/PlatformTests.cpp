#include "support/TemporaryDirectory.hpp"

#include <zvapikit/platform/BundleInfo.hpp>
#include <zvapikit/platform/Locale.hpp>
#include <zvapikit/platform/OperatingSystemVersion.hpp>
#include <zvapikit/platform/TimeZone.hpp>

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ZAK {
namespace {

TEST(OperatingSystemVersionTest, readsKernelReleases) {
  const auto read = [](const char* release) { return OperatingSystemVersion::fromRelease(release).description(); };
  EXPECT_EQ(read("5.15.167.4-microsoft-standard-WSL2"), "5.15.167");
  EXPECT_EQ(read("6.1-rc3"), "6.1.0");
  EXPECT_EQ(read("99999999999.1.2"), "0.0.0");
  EXPECT_EQ(read(""), "0.0.0");
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

TEST(LocaleTest, languageAndPreferredLanguagesFollowTheEnvironment) {
  struct Case {
    LocaleEnvironment environment;
    std::optional<std::string> languageCode;
    std::vector<std::string> preferred;
  };
  const auto lang = [](std::string value) {
    return LocaleEnvironment{.lcAll = {}, .lcMessages = {}, .lang = std::move(value), .language = {}};
  };
  const Case cases[] = {
      {{"fr_FR.UTF-8", "de_DE", "it_IT", ""}, "fr", {"fr-FR"}},
      {{"", "de_DE", "it_IT", ""}, "de", {"de-DE"}},
      {lang("it_IT"), "it", {"it-IT"}},
      {lang("de_DE.ISO-8859-15@euro"), "de", {"de-DE"}},
      {lang("es_419"), "es", {"es-419"}},
      {lang("sr_RS@latin"), "sr", {"sr-Latn-RS"}},
      {lang("zh_CN.UTF-8"), "zh", {"zh-Hans-CN"}},
      {lang("zh_Hant_CN"), "zh", {"zh-Hant-CN"}},
      // LANGUAGE ranks the languages, but does not make a locale.
      {{"", "", "fr_FR.UTF-8", "de_AT:en_GB:en"}, "fr", {"de-AT", "en-GB", "en"}},
      {{"", "", "fr_FR", "C::not a language:en\r\nx: y"}, "fr", {"fr-FR"}},
      {{"", "", "C.UTF-8", "de"}, std::nullopt, {"en"}},
      {{"POSIX", "", "fr_FR", "de"}, std::nullopt, {"en"}},
      {lang(""), std::nullopt, {"en"}},
      // Nothing that could break out of a header gets through.
      {lang("fr_FR\r\nX-Evil: 1"), std::nullopt, {"en"}},
      {lang("fr_"), "fr", {"fr"}},
      {lang("f\xc3\xa9"), std::nullopt, {"en"}},
  };
  for (const Case& c : cases) {
    const Locale locale(c.environment);
    SCOPED_TRACE(c.environment.lcAll + "|" + c.environment.lang + "|" + c.environment.language);
    EXPECT_EQ(locale.languageCode(), c.languageCode);
    EXPECT_EQ(locale.preferredLanguages(), c.preferred);
  }
}

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
      {":/usr/share/zoneinfo/Europe/Paris", rome, std::nullopt, "Europe/Paris"},
      {"/usr/share/zoneinfo/posix/Europe/Paris", rome, std::nullopt, "Europe/Paris"},
      // What is no zone of the database does not count, wherever it points.
      {"Europe", rome, std::nullopt, "Europe/Rome"},
      {"notazone", rome, std::nullopt, "Europe/Rome"},
      {"CET-1CEST,M3.5.0,M10.5.0/3", rome, std::nullopt, "Europe/Rome"},
      {"../zoneinfo/Europe/Paris", rome, std::nullopt, "Europe/Rome"},
      {"Europe/Paris\r\nX: 1", rome, std::nullopt, "Europe/Rome"},
      {"/etc/passwd", rome, std::nullopt, "Europe/Rome"},
      {"", rome, "Asia/Tokyo\n", "Europe/Rome"},
      {"", "../usr/share/zoneinfo/Etc/GMT+5", std::nullopt, "Etc/GMT+5"},
      {"", "/somewhere/else", "Asia/Tokyo\n", "Asia/Tokyo"},
      {"", "/usr/share/zoneinfo/bad name\n", "Asia/Tokyo\n", "Asia/Tokyo"},
      {"", std::nullopt, "/etc/passwd\n", "GMT"},
      {"", std::nullopt, std::nullopt, "GMT"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.tz + "|" + c.localtime.value_or("-") + "|" + c.timezone.value_or("-"));
    const Tests::TemporaryDirectory root;
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
