#pragma once

#include <zvapikit/Export.hpp>

#include <optional>
#include <string>
#include <vector>

namespace ZAK {

/// What the process's environment says about the user's language. An unset variable is an empty text.
struct ZVAPIKIT_API LocaleEnvironment {
  std::string lcAll;       ///< `LC_ALL`
  std::string lcMessages;  ///< `LC_MESSAGES`
  std::string lang;        ///< `LANG`
  std::string language;    ///< `LANGUAGE`, a colon-separated list

  static LocaleEnvironment current();
};

/// The user's language and preferred languages, as tags of RFC 5646. All texts are letters, digits and `-`, so they can
/// stand in a header.
///
/// Thread safety: immutable. `LocaleEnvironment::current` reads the environment, so it must not race with `setenv`.
class ZVAPIKIT_API Locale {
 public:
  /// The first non-empty of `LC_ALL`, `LC_MESSAGES` and `LANG` is the locale. When it names a language, `LANGUAGE`
  /// gives the preferred languages; entries of it that name none are skipped.
  explicit Locale(const LocaleEnvironment& environment);

  static Locale current() { return Locale(LocaleEnvironment::current()); }

  /// For example `fr`; absent for the locales C and POSIX, and for one that cannot be understood.
  [[nodiscard]] const std::optional<std::string>& languageCode() const noexcept { return languageCode_; }
  /// For example `fr-FR`, `en`; never empty. Without a language code it is `en`.
  [[nodiscard]] const std::vector<std::string>& preferredLanguages() const noexcept { return preferredLanguages_; }

 private:
  std::optional<std::string> languageCode_;
  std::vector<std::string> preferredLanguages_;
};

}  // namespace ZAK
