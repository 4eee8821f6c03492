#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/platform/BundleInfo.hpp>

#include <filesystem>
#include <string>

namespace ZAK {

/// What the default directories are derived from. An unset variable is an empty text.
///
/// Thread safety: as a standard container; `current` reads the environment, so it must not race with `setenv`.
struct ZVAPIKIT_API DirectoryEnvironment {
  std::string xdgDataHome{};  ///< `XDG_DATA_HOME`; ignored unless absolute, as its standard asks
  std::string home{};         ///< `HOME`, else the home of the user's account
  std::string tmpdir{};       ///< `TMPDIR`; ignored unless absolute
  unsigned user = 0;          ///< the effective user's number

  /// That of this process.
  static DirectoryEnvironment current();

  /// The base of the user's data files (XDG Base Directory): `$XDG_DATA_HOME`, else `~/.local/share`. Empty when there
  /// is neither.
  [[nodiscard]] std::filesystem::path dataHome() const;
};

/// Where the kit keeps files. An empty path stands for the default. They are made when they are needed.
///
/// Thread safety: as a standard container.
struct ZVAPIKIT_API Directories {
  /// Recap videos, which stay. Default: `$XDG_DATA_HOME/IDENTIFIER/Documents`, the identifier being the bundle's.
  std::filesystem::path documents{};
  /// Pictures that are sent as a form. Default: a directory below `$TMPDIR`, else `/tmp`. It must be the user's own,
  /// and is closed to all others as `createPrivate` does; so not `/tmp` itself.
  std::filesystem::path temporary{};

  /// The same with every empty path replaced by its default. Creates nothing.
  [[nodiscard]] Directories resolved(const BundleInfo& bundle,
                                     const DirectoryEnvironment& environment = DirectoryEnvironment::current()) const;

  /// Makes sure that `directory` is there and is the user's alone: creates it and its missing parents with mode 0700,
  /// or takes group and others off it. Parents that exist stay as they are. Safe to repeat.
  /// \throws std::filesystem::filesystem_error when that cannot be, above all when `directory` is a link, belongs to
  ///   someone else, or is one for all as /tmp is.
  static void createPrivate(const std::filesystem::path& directory);
};

}  // namespace ZAK
