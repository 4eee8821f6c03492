#pragma once

#include <zvapikit/Export.hpp>

#include <string>
#include <string_view>

namespace ZAK {

/// The version of the operating system; on Linux that of the kernel. 6.1.27 for example has the numbers 6, 1 and 27.
///
/// Thread safety: as a standard container; `current` may be called from any thread.
struct ZVAPIKIT_API OperatingSystemVersion {
  int major = 0;  ///< first number
  int minor = 0;  ///< second number
  int patch = 0;  ///< third number

  /// Reads the numbers at the start of a kernel release such as `6.1.0-18-amd64`; what is missing is 0.
  static OperatingSystemVersion fromRelease(std::string_view release) noexcept;
  /// The running kernel's.
  static OperatingSystemVersion current() noexcept;

  /// `major.minor.patch`
  [[nodiscard]] std::string description() const;
};

}  // namespace ZAK
