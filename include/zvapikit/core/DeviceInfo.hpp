#pragma once

#include <string>
#include <utility>

namespace ZAK {

/// The device as the back-end is told of it, in the headers of every request. The values must be fit for a header:
/// with a CR, LF or NUL in one, no request of the client can be sent.
struct DeviceInfo {
  DeviceInfo() = default;
  /// All fields, in their order.
  DeviceInfo(std::string platform_, std::string osVersion_, std::string deviceId_)
      : platform(std::move(platform_)), osVersion(std::move(osVersion_)), deviceId(std::move(deviceId_)) {}

  std::string platform;   ///< kind of device or system, for example `Linux`
  std::string osVersion;  ///< of the system, for example `6.1`
  std::string deviceId;   ///< names this device, the same at every start

  bool operator==(const DeviceInfo&) const = default;
};

}  // namespace ZAK
