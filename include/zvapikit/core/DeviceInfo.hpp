#pragma once

#include <string>
#include <utility>

namespace ZAK {

/// The device as the back-end is told of it, in the headers of every request. The values must be fit for a header:
/// with a CR, LF or NUL in one, no request of the client can be sent.
struct DeviceInfo {
  DeviceInfo() = default;
  DeviceInfo(std::string platform_, std::string osVersion_, std::string deviceId_)
      : platform(std::move(platform_)), osVersion(std::move(osVersion_)), deviceId(std::move(deviceId_)) {}

  std::string platform;
  std::string osVersion;
  std::string deviceId;

  bool operator==(const DeviceInfo&) const = default;
};

}  // namespace ZAK
