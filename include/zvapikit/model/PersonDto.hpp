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
  std::string id;                                ///< identifier of the user
  std::string username;                          ///< unique name
  std::optional<std::string> fullname;           ///< as the user gave it
  std::optional<MediaDto> profilePicture;        ///< absent when there is none
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
  std::optional<std::vector<PersonCommonFriendsSampleDto>> sample;  ///< as many as the server cares to send
  std::int64_t total = 0;                                           ///< may exceed the sample's length

  bool operator==(const PersonCommonFriendsDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&PersonCommonFriendsDto::sample>("sample"),
                      JSONField::of<&PersonCommonFriendsDto::total>("total")};
  }
};

/// How the reader is related to a person.
struct PersonRelationshipsDto {
  std::optional<RelationshipsStatusDto> status;         ///< absent when the two have nothing to do with each other
  std::optional<PersonCommonFriendsDto> commonFriends;  ///< absent when the server does not say
  std::optional<Date> friendedAt;                       ///< when the two became friends

  bool operator==(const PersonRelationshipsDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&PersonRelationshipsDto::status>("status"),
                      JSONField::of<&PersonRelationshipsDto::commonFriends>("commonFriends"),
                      JSONField::of<&PersonRelationshipsDto::friendedAt>("friendedAt")};
  }
};

/// Somebody's public profile.
struct PersonDto {
  std::string id;                          ///< identifier of the user
  std::string username;                    ///< unique name
  Date createdAt{};                        ///< when the profile was made
  std::optional<std::string> fullname;     ///< as the user gave it
  std::optional<std::string> biography;    ///< in the user's own words
  std::optional<std::string> location;     ///< any text
  std::optional<MediaDto> profilePicture;  ///< absent when there is none
  PersonRelationshipsDto relationship;     ///< to the reader

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
