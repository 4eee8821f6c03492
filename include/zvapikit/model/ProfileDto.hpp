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
  std::string deviceId;
  std::optional<std::string> clientVersion;
  std::optional<std::string> device;
  std::optional<std::string> pushToken;
  std::optional<std::string> language;
  std::optional<std::string> platform;
  std::optional<std::string> timezone;

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
  std::string id;
  std::string username;
  std::vector<ProfileDeviceDto> devices;
  std::vector<ProfileQuibletDto> quiblets;  ///< stored reaction selfies
  std::optional<std::string> fullname;
  std::optional<std::string> phoneNumber;
  std::optional<MediaDto> profilePicture;
  std::optional<std::string> biography;
  std::optional<std::string> location;  ///< any text
  std::optional<std::string> countryCode;
  std::optional<RegionCodeDto> region;
  bool canPost = false;
  bool canUpdateRegion = false;
  std::optional<std::string> newUsername;
  std::optional<Date> accountDeleteScheduledAt;  ///< set while a deletion of the account is pending
  std::optional<Date> createdAt;

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
