#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/json/Date.hpp>
#include <zvapikit/json/JSONType.hpp>
#include <zvapikit/json/NullEncodable.hpp>

#include <array>
#include <optional>
#include <string>
#include <utility>

namespace ZAK {

/// What a user tells about themselves. As the body of an update it changes what is present and leaves the rest alone.
struct ProfileInformationDto {
  ProfileInformationDto() = default;
  /// All fields, in their order.
  ProfileInformationDto(std::optional<std::string> username_, std::optional<std::string> fullname_,
                        std::optional<std::string> biography_, std::optional<std::string> location_,
                        std::optional<Date> birthdate_, std::optional<std::string> device_,
                        std::optional<std::string> deviceId_, std::optional<std::string> platform_,
                        std::optional<std::string> timezone_, std::optional<std::string> pushToken_,
                        std::optional<std::string> language_, std::optional<std::string> clientVersion_)
      : username(std::move(username_)),
        fullname(std::move(fullname_)),
        biography(std::move(biography_)),
        location(std::move(location_)),
        birthdate(birthdate_),
        device(std::move(device_)),
        deviceId(std::move(deviceId_)),
        platform(std::move(platform_)),
        timezone(std::move(timezone_)),
        pushToken(std::move(pushToken_)),
        language(std::move(language_)),
        clientVersion(std::move(clientVersion_)) {}

  std::optional<std::string> username;       ///< unique among users
  std::optional<std::string> fullname;       ///< as other users shall see it
  std::optional<std::string> biography;      ///< any text
  std::optional<std::string> location;       ///< any text
  std::optional<Date> birthdate;             ///< one that cannot be fails with the key `errorBirthdate`
  std::optional<std::string> device;         ///< model, any text
  std::optional<std::string> deviceId;       ///< `DeviceInfo::deviceId`
  std::optional<std::string> platform;       ///< operating system, any text
  std::optional<std::string> timezone;       ///< an IANA name such as `Europe/Paris`
  std::optional<std::string> pushToken;      ///< where push notifications are sent
  std::optional<std::string> language;       ///< a code such as `fr`
  std::optional<std::string> clientVersion;  ///< version of the app

  bool operator==(const ProfileInformationDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&ProfileInformationDto::username>("username"),
                      JSONField::of<&ProfileInformationDto::fullname>("fullname"),
                      JSONField::of<&ProfileInformationDto::biography>("biography"),
                      JSONField::of<&ProfileInformationDto::location>("location"),
                      JSONField::of<&ProfileInformationDto::birthdate>("birthdate"),
                      JSONField::of<&ProfileInformationDto::device>("device"),
                      JSONField::of<&ProfileInformationDto::deviceId>("deviceId"),
                      JSONField::of<&ProfileInformationDto::platform>("platform"),
                      JSONField::of<&ProfileInformationDto::timezone>("timezone"),
                      JSONField::of<&ProfileInformationDto::pushToken>("pushToken"),
                      JSONField::of<&ProfileInformationDto::language>("language"),
                      JSONField::of<&ProfileInformationDto::clientVersion>("clientVersion")};
  }
};

/// Body that creates the profile.
struct ZVAPIKIT_API ProfileCreateInformationDto {
  ProfileCreateInformationDto() = default;
  /// All fields, in their order.
  ProfileCreateInformationDto(std::string username_, std::string fullname_, Date birthdate_,
                              std::optional<std::string> device_, std::optional<std::string> deviceId_,
                              std::optional<std::string> platform_, std::optional<std::string> timezone_,
                              std::optional<std::string> pushToken_, std::optional<std::string> language_,
                              std::optional<std::string> clientVersion_,
                              std::optional<std::string> parentalConsentRequestId_)
      : username(std::move(username_)),
        fullname(std::move(fullname_)),
        birthdate(birthdate_),
        device(std::move(device_)),
        deviceId(std::move(deviceId_)),
        platform(std::move(platform_)),
        timezone(std::move(timezone_)),
        pushToken(std::move(pushToken_)),
        language(std::move(language_)),
        clientVersion(std::move(clientVersion_)),
        parentalConsentRequestId(std::move(parentalConsentRequestId_)) {}

  std::string username;                                 ///< one that is taken fails with the key `usernameNotAvailable`
  std::string fullname;                                 ///< as other users shall see it
  Date birthdate{};                                     ///< one that cannot be fails with the key `errorBirthdate`
  std::optional<std::string> device;                    ///< model, any text
  std::optional<std::string> deviceId;                  ///< `DeviceInfo::deviceId`
  std::optional<std::string> platform;                  ///< operating system, any text
  std::optional<std::string> timezone;                  ///< an IANA name such as `Europe/Paris`
  std::optional<std::string> pushToken;                 ///< where push notifications are sent
  std::optional<std::string> language;                  ///< a code such as `fr`
  std::optional<std::string> clientVersion;             ///< version of the app
  std::optional<std::string> parentalConsentRequestId;  ///< identifier of the parents' consent, where one is needed

  /// What a new profile takes from `infos`, which must hold the three required values; biography and location are not
  /// part of it.
  /// \throws EncodingError that names the first value missing.
  static ProfileCreateInformationDto of(ProfileInformationDto infos,
                                        std::optional<std::string> parentalConsentRequestId_);

  bool operator==(const ProfileCreateInformationDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{
        JSONField::of<&ProfileCreateInformationDto::username>("username"),
        JSONField::of<&ProfileCreateInformationDto::fullname>("fullname"),
        JSONField::of<&ProfileCreateInformationDto::birthdate>("birthdate"),
        JSONField::of<&ProfileCreateInformationDto::device>("device"),
        JSONField::of<&ProfileCreateInformationDto::deviceId>("deviceId"),
        JSONField::of<&ProfileCreateInformationDto::platform>("platform"),
        JSONField::of<&ProfileCreateInformationDto::timezone>("timezone"),
        JSONField::of<&ProfileCreateInformationDto::pushToken>("pushToken"),
        JSONField::of<&ProfileCreateInformationDto::language>("language"),
        JSONField::of<&ProfileCreateInformationDto::clientVersion>("clientVersion"),
        JSONField::of<&ProfileCreateInformationDto::parentalConsentRequestId>("parentalConsentRequestId")};
  }
};

/// Body that sets the user name, or clears it with an explicit null.
struct ProfileInformationUsernameDto {
  NullEncodable<std::string> username;  ///< cleared when absent

  bool operator==(const ProfileInformationUsernameDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&ProfileInformationUsernameDto::username>("username")};
  }
};

}  // namespace ZAK
