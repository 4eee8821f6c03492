#include "platform/Environment.hpp"

#include <zvapikit/platform/Locale.hpp>

#include <algorithm>
#include <string_view>
#include <utility>

namespace ZAK {
namespace {

struct Tag {
  std::string language;
  std::string script;
  std::string region;

  [[nodiscard]] std::string text() const {
    std::string result = language;
    for (const std::string* part : {&script, &region}) {
      if (!part->empty()) result.append("-").append(*part);
    }
    return result;
  }
};

bool isUpper(char c) { return c >= 'A' && c <= 'Z'; }
bool isLower(char c) { return c >= 'a' && c <= 'z'; }
bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isLetter(char c) { return isUpper(c) || isLower(c); }
char lowered(char c) { return isUpper(c) ? static_cast<char>(c - 'A' + 'a') : c; }
char raised(char c) { return isLower(c) ? static_cast<char>(c - 'a' + 'A') : c; }

bool isLanguage(std::string_view part) {
  return (part.size() == 2 || part.size() == 3) && std::all_of(part.begin(), part.end(), isLetter);
}
bool isScript(std::string_view part) { return part.size() == 4 && std::all_of(part.begin(), part.end(), isLetter); }
bool isRegion(std::string_view part) {
  return (part.size() == 2 && std::all_of(part.begin(), part.end(), isLetter)) ||
         (part.size() == 3 && std::all_of(part.begin(), part.end(), isDigit));
}

/// Cuts `text` at the first `separator` and returns what stood before it.
std::string_view takeUpTo(std::string_view& text, char separator) {
  const auto end = std::min(text.find(separator), text.size());
  const std::string_view head = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return head;
}

/// Reads `language[_Script][_REGION][.codeset][@modifier]`; absent for anything else, C and POSIX included.
std::optional<Tag> parseTag(std::string_view locale) {
  std::string_view modifier = locale;
  std::string_view rest = takeUpTo(modifier, '@');
  rest = takeUpTo(rest, '.');

  Tag tag;
  const std::string_view language = takeUpTo(rest, '_');
  if (!isLanguage(language)) return std::nullopt;
  std::transform(language.begin(), language.end(), std::back_inserter(tag.language), lowered);
  while (!rest.empty()) {
    const std::string_view part = takeUpTo(rest, '_');
    if (isScript(part) && tag.script.empty() && tag.region.empty()) {
      std::transform(part.begin(), part.end(), std::back_inserter(tag.script), lowered);
      tag.script.front() = raised(tag.script.front());
    } else if (isRegion(part) && tag.region.empty()) {
      std::transform(part.begin(), part.end(), std::back_inserter(tag.region), raised);
    } else {
      return std::nullopt;
    }
  }
  if (tag.script.empty()) {
    if (modifier == "latin") tag.script = "Latn";
    if (modifier == "cyrillic") tag.script = "Cyrl";
    if (tag.language == "zh" && tag.region == "CN") tag.script = "Hans";
    if (tag.language == "zh" && tag.region == "TW") tag.script = "Hant";
  }
  return tag;
}

}  // namespace

LocaleEnvironment LocaleEnvironment::current() {
  return {.lcAll = environmentValue("LC_ALL"),
          .lcMessages = environmentValue("LC_MESSAGES"),
          .lang = environmentValue("LANG"),
          .language = environmentValue("LANGUAGE")};
}

Locale::Locale(const LocaleEnvironment& environment) {
  const std::string& name = !environment.lcAll.empty()        ? environment.lcAll
                            : !environment.lcMessages.empty() ? environment.lcMessages
                                                              : environment.lang;
  const std::optional<Tag> locale = parseTag(name);
  if (!locale) {
    preferredLanguages_.emplace_back("en");
    return;
  }
  languageCode_ = locale->language;
  std::string_view list = environment.language;
  while (!list.empty()) {
    if (const auto tag = parseTag(takeUpTo(list, ':'))) preferredLanguages_.push_back(tag->text());
  }
  if (preferredLanguages_.empty()) preferredLanguages_.push_back(locale->text());
}

}  // namespace ZAK
