#pragma once

#include <zvapikit/Export.hpp>

#include <string>
#include <string_view>

namespace ZAK {

/// The version of the operating system; on Linux that of the kernel.
struct ZVAPIKIT_API OperatingSystemVersion {
  int major = 0;
  int minor = 0;
  int patch = 0;

  /// Reads the numbers at the start of a kernel release such as `6.1.0-18-amd64`; what is missing is 0.
  static OperatingSystemVersion fromRelease(std::string_view release) noexcept;
  /// The running kernel's.
  static OperatingSystemVersion current() noexcept;

  /// `major.minor.patch`
  [[nodiscard]] std::string description() const;
};

}  // namespace ZAK
