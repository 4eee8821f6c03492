#include "platform/Environment.hpp"

#include <zvapikit/platform/TimeZone.hpp>

#include <algorithm>
#include <fstream>
#include <optional>
#include <string_view>
#include <system_error>

namespace ZAK {
namespace {

namespace fs = std::filesystem;

bool isNameCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '/' || c == '_' ||
         c == '+' || c == '-';
}

/// Dots are no name characters, so an identifier cannot climb out of the database.
bool isIdentifier(std::string_view text) {
  return !text.empty() && text.size() <= 64 && text.front() != '/' && text.back() != '/' &&
         text.find("//") == std::string_view::npos && std::all_of(text.begin(), text.end(), isNameCharacter);
}

/// What follows `zoneinfo/`, without the name of the database's variant.
std::optional<std::string> afterZoneinfo(std::string_view path) {
  constexpr std::string_view folder = "zoneinfo/";
  const auto at = path.rfind(folder);
  if (at == std::string_view::npos) return std::nullopt;
  path.remove_prefix(at + folder.size());
  for (const std::string_view variant : {"posix/", "right/"}) {
    if (path.starts_with(variant)) path.remove_prefix(variant.size());
  }
  if (!isIdentifier(path)) return std::nullopt;
  return std::string{path};
}

bool zoneExists(const fs::path& root, const std::string& identifier) {
  std::ifstream file(root / "usr/share/zoneinfo" / identifier, std::ios::binary);
  char magic[4] = {};
  return file.read(magic, sizeof magic) && std::string_view(magic, sizeof magic) == "TZif";
}

std::optional<std::string> fromVariable(const TimeZoneEnvironment& environment) {
  std::string_view name = environment.tz;
  if (name.starts_with(':')) name.remove_prefix(1);
  const auto identifier = name.starts_with('/') ? afterZoneinfo(name)
                          : isIdentifier(name)  ? std::optional<std::string>{name}
                                                : std::nullopt;
  return identifier && zoneExists(environment.root, *identifier) ? identifier : std::nullopt;
}

std::optional<std::string> fromLocaltime(const fs::path& root) {
  std::error_code error;
  const fs::path target = fs::read_symlink(root / "etc/localtime", error);
  return error ? std::nullopt : afterZoneinfo(target.native());
}

std::optional<std::string> fromTimezoneFile(const fs::path& root) {
  std::ifstream file(root / "etc/timezone");
  std::string identifier;
  file >> identifier;
  return isIdentifier(identifier) ? std::optional(identifier) : std::nullopt;
}

}  // namespace

TimeZoneEnvironment TimeZoneEnvironment::current() { return {.tz = environmentValue("TZ")}; }

std::string timeZoneIdentifier(const TimeZoneEnvironment& environment) {
  if (const auto identifier = fromVariable(environment)) return *identifier;
  if (const auto identifier = fromLocaltime(environment.root)) return *identifier;
  return fromTimezoneFile(environment.root).value_or("GMT");
}

}  // namespace ZAK
