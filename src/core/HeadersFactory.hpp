#pragma once

#include <zvapikit/core/DeviceInfo.hpp>
#include <zvapikit/http/HTTPHeaders.hpp>
#include <zvapikit/platform/BundleInfo.hpp>

#include <string>
#include <vector>

namespace ZAK {

/// What the platform tells about its user and itself, as it is sent in headers.
struct PlatformFacts {
  std::string languageCode;                     ///< of the current locale; may be empty
  std::vector<std::string> preferredLanguages;  ///< best first, never empty
  std::string timeZone;                         ///< identifier, for example Europe/Paris
  std::string operatingSystemVersion;           ///< major.minor.patch

  /// As they are now.
  static PlatformFacts current();
};

/// Makes the ten headers that every request to the kit's servers carries.
class HeadersFactory {
 public:
  HeadersFactory(DeviceInfo deviceInfo, BundleInfo bundle, PlatformFacts facts)
      : deviceInfo_(std::move(deviceInfo)), bundle_(std::move(bundle)), facts_(std::move(facts)) {}

  [[nodiscard]] HTTPHeaders headers() const;

 private:
  [[nodiscard]] HTTPHeaders::Element zvUserAgent() const;
  [[nodiscard]] HTTPHeaders::Element zvPlatform() const;
  [[nodiscard]] HTTPHeaders::Element zvAppLanguage() const;
  [[nodiscard]] HTTPHeaders::Element zvVersion() const;
  [[nodiscard]] HTTPHeaders::Element zvOsVersion() const;
  [[nodiscard]] HTTPHeaders::Element zvDeviceLanguage() const;
  [[nodiscard]] HTTPHeaders::Element zvTimezone() const;
  [[nodiscard]] HTTPHeaders::Element zvDeviceId() const;

  DeviceInfo deviceInfo_;
  BundleInfo bundle_;
  PlatformFacts facts_;
};

}  // namespace ZAK
