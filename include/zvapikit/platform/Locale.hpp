#pragma once

#include <zvapikit/Export.hpp>

#include <optional>
#include <string>
#include <vector>

namespace ZAK {

/// What the process's environment says about the user's language. An unset variable is an empty text.
///
/// Thread safety: as a standard container; `current` reads the environment, so it must not race with `setenv`.
struct ZVAPIKIT_API LocaleEnvironment {
  std::string lcAll;       ///< `LC_ALL`
  std::string lcMessages;  ///< `LC_MESSAGES`
  std::string lang;        ///< `LANG`
  std::string language;    ///< `LANGUAGE`, a colon-separated list

  /// That of this process.
  static LocaleEnvironment current();
};

/// The user's language and preferred languages, as tags of RFC 5646. All texts are letters, digits and `-`, so they can
/// stand in a header.
///
/// Thread safety: immutable; `current` as that of `LocaleEnvironment`.
class ZVAPIKIT_API Locale {
 public:
  /// The first non-empty of `LC_ALL`, `LC_MESSAGES` and `LANG` is the locale. When it names a language, `LANGUAGE`
  /// gives the preferred languages; entries of it that name none are skipped.
  explicit Locale(const LocaleEnvironment& environment);

  /// That of this process's environment.
  static Locale current() { return Locale(LocaleEnvironment::current()); }

  /// The language, for example `fr`; absent for the locales C and POSIX, and for one that cannot be understood.
  [[nodiscard]] const std::optional<std::string>& languageCode() const noexcept { return languageCode_; }
  /// Best first, for example `fr-FR`, `en`; never empty. Without a language code it is `en`.
  [[nodiscard]] const std::vector<std::string>& preferredLanguages() const noexcept { return preferredLanguages_; }

 private:
  std::optional<std::string> languageCode_;
  std::vector<std::string> preferredLanguages_;
};

}  // namespace ZAK
