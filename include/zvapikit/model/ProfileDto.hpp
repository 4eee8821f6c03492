#pragma once

#include <zvapikit/json/Date.hpp>
#include <zvapikit/json/JSONType.hpp>
#include <zvapikit/model/MediaDto.hpp>
#include <zvapikit/model/RegionCodeDto.hpp>

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace ZAK {

/// A device on which the user is signed in.
struct ProfileDeviceDto {
  std::string deviceId;                      ///< `DeviceInfo::deviceId` of the host there
  std::optional<std::string> clientVersion;  ///< version of the app
  std::optional<std::string> device;         ///< model, any text
  std::optional<std::string> pushToken;      ///< where push notifications are sent
  std::optional<std::string> language;       ///< a code such as `fr`
  std::optional<std::string> platform;       ///< operating system, any text
  std::optional<std::string> timezone;       ///< an IANA name such as `Europe/Paris`

  bool operator==(const ProfileDeviceDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&ProfileDeviceDto::deviceId>("deviceId"),
                      JSONField::of<&ProfileDeviceDto::clientVersion>("clientVersion"),
                      JSONField::of<&ProfileDeviceDto::device>("device"),
                      JSONField::of<&ProfileDeviceDto::pushToken>("pushToken"),
                      JSONField::of<&ProfileDeviceDto::language>("language"),
                      JSONField::of<&ProfileDeviceDto::platform>("platform"),
                      JSONField::of<&ProfileDeviceDto::timezone>("timezone")};
  }
};

/// A stored reaction selfie.
struct ProfileQuibletDto {
  std::string emoji;  ///< what it stands for
  MediaDto media;     ///< the selfie

  bool operator==(const ProfileQuibletDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&ProfileQuibletDto::emoji>("emoji"),
                      JSONField::of<&ProfileQuibletDto::media>("media")};
  }
};

/// The signed-in user.
struct ProfileDto {
  std::string id;                                ///< identifier of the user
  std::string username;                          ///< unique name
  std::vector<ProfileDeviceDto> devices;         ///< on which the user is signed in
  std::vector<ProfileQuibletDto> quiblets;       ///< stored reaction selfies, one an emoji
  std::optional<std::string> fullname;           ///< as the user gave it
  std::optional<std::string> phoneNumber;        ///< in E.164 form, for example `+33639980101`
  std::optional<MediaDto> profilePicture;        ///< absent when there is none
  std::optional<std::string> biography;          ///< in the user's own words
  std::optional<std::string> location;           ///< any text
  std::optional<std::string> countryCode;        ///< ISO 3166-1 alpha-2, for example `FR`
  std::optional<RegionCodeDto> region;           ///< whose moments the user posts for
  bool canPost = false;                          ///< false once the user has posted for the moment
  bool canUpdateRegion = false;                  ///< false while the server refuses another change
  std::optional<std::string> newUsername;        ///< a user name that is asked for and not yet in force
  std::optional<Date> accountDeleteScheduledAt;  ///< set while a deletion of the account is pending
  std::optional<Date> createdAt;                 ///< when the profile was made

  bool operator==(const ProfileDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&ProfileDto::id>("id"),
                      JSONField::of<&ProfileDto::username>("username"),
                      JSONField::of<&ProfileDto::devices>("devices"),
                      JSONField::of<&ProfileDto::quiblets>("quiblets"),
                      JSONField::of<&ProfileDto::fullname>("fullname"),
                      JSONField::of<&ProfileDto::phoneNumber>("phoneNumber"),
                      JSONField::of<&ProfileDto::profilePicture>("profilePicture"),
                      JSONField::of<&ProfileDto::biography>("biography"),
                      JSONField::of<&ProfileDto::location>("location"),
                      JSONField::of<&ProfileDto::countryCode>("countryCode"),
                      JSONField::of<&ProfileDto::region>("region"),
                      JSONField::of<&ProfileDto::canPost>("canPost"),
                      JSONField::of<&ProfileDto::canUpdateRegion>("canUpdateRegion"),
                      JSONField::of<&ProfileDto::newUsername>("newUsername"),
                      JSONField::of<&ProfileDto::accountDeleteScheduledAt>("accountDeleteScheduledAt"),
                      JSONField::of<&ProfileDto::createdAt>("createdAt")};
  }
};

}  // namespace ZAK
