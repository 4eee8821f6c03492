#include <zvapikit/platform/Locale.hpp>

#include <gtest/gtest.h>

namespace ZAK {
namespace {

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
      {lang("ast"), "ast", {"ast"}},
      {lang("de_DE.ISO-8859-15@euro"), "de", {"de-DE"}},
      {lang("es_419"), "es", {"es-419"}},
      {lang("sr_RS@latin"), "sr", {"sr-Latn-RS"}},
      {lang("uz_UZ.UTF-8@cyrillic"), "uz", {"uz-Cyrl-UZ"}},
      {lang("zh_CN.UTF-8"), "zh", {"zh-Hans-CN"}},
      {lang("zh_TW"), "zh", {"zh-Hant-TW"}},
      {lang("zh_Hant_CN"), "zh", {"zh-Hant-CN"}},
      {lang("FR_fr"), "fr", {"fr-FR"}},
      // LANGUAGE ranks the languages, but does not make a locale.
      {{"", "", "fr_FR.UTF-8", "de_AT:en_GB:en"}, "fr", {"de-AT", "en-GB", "en"}},
      {{"", "", "fr_FR", "C::not a language:en\r\nx: y"}, "fr", {"fr-FR"}},
      {{"", "", "C.UTF-8", "de"}, std::nullopt, {"en"}},
      {{"POSIX", "", "fr_FR", "de"}, std::nullopt, {"en"}},
      {{"C", "", "", ""}, std::nullopt, {"en"}},
      {lang(""), std::nullopt, {"en"}},
      // Nothing that could break out of a header gets through.
      {lang("fr_FR\r\nX-Evil: 1"), std::nullopt, {"en"}},
      {lang("fr_"), "fr", {"fr"}},
      {lang("fr_FR_FR"), std::nullopt, {"en"}},
      {lang("f"), std::nullopt, {"en"}},
      {lang("fr FR"), std::nullopt, {"en"}},
      {lang("f\xc3\xa9"), std::nullopt, {"en"}},
  };
  for (const Case& c : cases) {
    const Locale locale(c.environment);
    SCOPED_TRACE(c.environment.lcAll + "|" + c.environment.lang + "|" + c.environment.language);
    EXPECT_EQ(locale.languageCode(), c.languageCode);
    EXPECT_EQ(locale.preferredLanguages(), c.preferred);
  }
}

}  // namespace
}  // namespace ZAK
