#include <zvapikit/platform/OperatingSystemVersion.hpp>

#include <charconv>
#include <sys/utsname.h>

namespace ZAK {

OperatingSystemVersion OperatingSystemVersion::fromRelease(std::string_view release) noexcept {
  OperatingSystemVersion version;
  const char* at = release.data();
  const char* const end = at + release.size();
  for (int* number : {&version.major, &version.minor, &version.patch}) {
    if (at == end || *at < '0' || *at > '9') break;
    const auto [next, error] = std::from_chars(at, end, *number);
    if (error != std::errc{} || next == end || *next != '.') break;
    at = next + 1;
  }
  return version;
}

OperatingSystemVersion OperatingSystemVersion::current() noexcept {
  utsname name{};
  return ::uname(&name) == 0 ? fromRelease(name.release) : OperatingSystemVersion{};
}

std::string OperatingSystemVersion::description() const {
  return std::to_string(major) + "." + std::to_string(minor) + "." + std::to_string(patch);
}

}  // namespace ZAK
