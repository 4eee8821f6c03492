#pragma once

#include <zvapikit/Export.hpp>

#include <filesystem>
#include <string>

namespace ZAK {

/// Where the machine's time zone is looked up.
///
/// Thread safety: as a standard container; `current` reads the environment, so it must not race with `setenv`.
struct ZVAPIKIT_API TimeZoneEnvironment {
  std::string tz{};                  ///< `TZ`; empty when unset
  std::filesystem::path root = "/";  ///< the file system that holds `etc/` and `usr/share/zoneinfo/`

  /// That of this process.
  static TimeZoneEnvironment current();
};

/// The identifier of the time zone in the IANA database, for example `Europe/Paris`: that of `TZ` if the zone exists,
/// else what `/etc/localtime` links to, else the text of `/etc/timezone`, else `GMT`. It consists of letters, digits
/// and `/ _ + -`, so it can stand in a header. Never throws for what it finds on the machine.
ZVAPIKIT_API std::string timeZoneIdentifier(const TimeZoneEnvironment& environment = TimeZoneEnvironment::current());

}  // namespace ZAK
