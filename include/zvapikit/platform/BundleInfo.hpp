#pragma once

#include <zvapikit/Export.hpp>

#include <string>

namespace ZAK {

/// What the host program says about itself. It goes into the user agent, the version header and the default
/// directories. A value that is missing is the text `unknown`.
///
/// Thread safety: as a standard container.
struct ZVAPIKIT_API BundleInfo {
  std::string executable = "unknown";    ///< name of the program, for example `MyApp`
  std::string shortVersion = "unknown";  ///< for people, for example `2.3.1`
  std::string identifier = "unknown";    ///< in reverse DNS form, for example `com.example.app`
  std::string version = "unknown";       ///< of the build, for example `457`

  /// The same with every value that cannot stand in a header (empty, or with a control character) turned into
  /// `unknown`.
  [[nodiscard]] BundleInfo sanitized() const;
};

}  // namespace ZAK
