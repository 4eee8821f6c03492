#pragma once

#include <zvapikit/json/Date.hpp>
#include <zvapikit/json/JSONType.hpp>
#include <zvapikit/model/MediaDto.hpp>
#include <zvapikit/model/RelationshipsStatusDto.hpp>

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace ZAK {

/// A friend that two people have in common.
struct PersonCommonFriendsSampleDto {
  std::string id;
  std::string username;
  std::optional<std::string> fullname;
  std::optional<MediaDto> profilePicture;
  std::optional<RelationshipsStatusDto> status;  ///< how the reader is related to this person

  bool operator==(const PersonCommonFriendsSampleDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&PersonCommonFriendsSampleDto::id>("id"),
                      JSONField::of<&PersonCommonFriendsSampleDto::username>("username"),
                      JSONField::of<&PersonCommonFriendsSampleDto::fullname>("fullname"),
                      JSONField::of<&PersonCommonFriendsSampleDto::profilePicture>("profilePicture"),
                      JSONField::of<&PersonCommonFriendsSampleDto::status>("status")};
  }
};

/// The friends that two people have in common.
struct PersonCommonFriendsDto {
  std::optional<std::vector<PersonCommonFriendsSampleDto>> sample;
  std::int64_t total = 0;

  bool operator==(const PersonCommonFriendsDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&PersonCommonFriendsDto::sample>("sample"),
                      JSONField::of<&PersonCommonFriendsDto::total>("total")};
  }
};

/// How the reader is related to a person.
struct PersonRelationshipsDto {
  std::optional<RelationshipsStatusDto> status;
  std::optional<PersonCommonFriendsDto> commonFriends;
  std::optional<Date> friendedAt;

  bool operator==(const PersonRelationshipsDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&PersonRelationshipsDto::status>("status"),
                      JSONField::of<&PersonRelationshipsDto::commonFriends>("commonFriends"),
                      JSONField::of<&PersonRelationshipsDto::friendedAt>("friendedAt")};
  }
};

/// Somebody's public profile.
struct PersonDto {
  std::string id;
  std::string username;
  Date createdAt{};
  std::optional<std::string> fullname;
  std::optional<std::string> biography;
  std::optional<std::string> location;  ///< any text
  std::optional<MediaDto> profilePicture;
  PersonRelationshipsDto relationship;

  bool operator==(const PersonDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&PersonDto::id>("id"),
                      JSONField::of<&PersonDto::username>("username"),
                      JSONField::of<&PersonDto::createdAt>("createdAt"),
                      JSONField::of<&PersonDto::fullname>("fullname"),
                      JSONField::of<&PersonDto::biography>("biography"),
                      JSONField::of<&PersonDto::location>("location"),
                      JSONField::of<&PersonDto::profilePicture>("profilePicture"),
                      JSONField::of<&PersonDto::relationship>("relationship")};
  }
};

}  // namespace ZAK
