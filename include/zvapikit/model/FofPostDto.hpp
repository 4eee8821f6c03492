#pragma once

#include <zvapikit/json/Date.hpp>
#include <zvapikit/json/JSONType.hpp>
#include <zvapikit/model/MediaDto.hpp>
#include <zvapikit/model/RegionCodeDto.hpp>

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace ZAK {

/// A friend that the reader of a post shares with its author.
struct FofCommonFriendDto {
  std::string id;                          ///< identifier of the user
  std::string username;                    ///< unique name
  std::optional<std::string> fullname;     ///< as the user gave it
  std::optional<MediaDto> profilePicture;  ///< absent when there is none

  bool operator==(const FofCommonFriendDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&FofCommonFriendDto::id>("id"),
                      JSONField::of<&FofCommonFriendDto::username>("username"),
                      JSONField::of<&FofCommonFriendDto::fullname>("fullname"),
                      JSONField::of<&FofCommonFriendDto::profilePicture>("profilePicture")};
  }
};

/// How the reader of a post is linked to its author.
struct FofRelationshipDto {
  std::optional<std::vector<FofCommonFriendDto>>
      commonFriends;  ///< friends of both; absent when the server does not say

  bool operator==(const FofRelationshipDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&FofRelationshipDto::commonFriends>("commonFriends")};
  }
};

/// The author of a friend-of-a-friend post.
struct FofUserDto {
  std::string id;                                  ///< identifier of the user
  std::string username;                            ///< unique name
  std::optional<std::string> fullname;             ///< as the user gave it
  std::optional<MediaDto> profilePicture;          ///< absent when there is none
  std::optional<FofRelationshipDto> relationship;  ///< absent when the server does not say

  bool operator==(const FofUserDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&FofUserDto::id>("id"), JSONField::of<&FofUserDto::username>("username"),
                      JSONField::of<&FofUserDto::fullname>("fullname"),
                      JSONField::of<&FofUserDto::profilePicture>("profilePicture"),
                      JSONField::of<&FofUserDto::relationship>("relationship")};
  }
};

/// The moment that a post belongs to.
struct FofMomentDto {
  std::string id;        ///< identifier of the moment
  RegionCodeDto region;  ///< whose moment it was

  bool operator==(const FofMomentDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&FofMomentDto::id>("id"), JSONField::of<&FofMomentDto::region>("region")};
  }
};

/// Where a post was taken.
struct FofLocationDto {
  double latitude = 0;   ///< degrees, north is positive
  double longitude = 0;  ///< degrees, east is positive

  bool operator==(const FofLocationDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&FofLocationDto::latitude>("latitude"),
                      JSONField::of<&FofLocationDto::longitude>("longitude")};
  }
};

/// Who reacted to a post.
struct FofQuibletUserDto {
  std::string id;        ///< identifier of the user
  std::string username;  ///< unique name

  bool operator==(const FofQuibletUserDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&FofQuibletUserDto::id>("id"),
                      JSONField::of<&FofQuibletUserDto::username>("username")};
  }
};

/// One reaction selfie on a post.
struct FofQuibletDto {
  std::string id;          ///< identifier of the reaction
  FofQuibletUserDto user;  ///< who reacted
  MediaDto media;          ///< the selfie
  std::string emoji;       ///< what the reaction stands for
  bool isInstant = false;  ///< true for a selfie taken for this post, false for a stored one
  Date postedAt{};         ///< when the user reacted

  bool operator==(const FofQuibletDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&FofQuibletDto::id>("id"),
                      JSONField::of<&FofQuibletDto::user>("user"),
                      JSONField::of<&FofQuibletDto::media>("media"),
                      JSONField::of<&FofQuibletDto::emoji>("emoji"),
                      JSONField::of<&FofQuibletDto::isInstant>("isInstant"),
                      JSONField::of<&FofQuibletDto::postedAt>("postedAt")};
  }
};

/// The reactions to a post. The reader's own travels as `self`.
struct FofQuibletsRootDto {
  std::int64_t total = 0;             ///< number of reactions; may exceed the sample's length
  std::optional<FofQuibletDto> mine;  ///< the reader's own reaction, if any
  std::vector<FofQuibletDto> sample;  ///< as many as the server cares to send

  bool operator==(const FofQuibletsRootDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&FofQuibletsRootDto::total>("total"),
                      JSONField::of<&FofQuibletsRootDto::mine>("self"),
                      JSONField::of<&FofQuibletsRootDto::sample>("sample")};
  }
};

/// A post of a friend of a friend.
struct FofPostDto {
  std::string id;                              ///< identifier of the post
  FofUserDto user;                             ///< author
  FofMomentDto moment;                         ///< the moment it was posted for
  MediaDto primary;                            ///< main picture
  MediaDto secondary;                          ///< inset picture
  std::optional<FofLocationDto> location;      ///< where the pictures were taken; absent unless the author tells
  std::optional<std::string> caption;          ///< the author's words; absent when there are none
  Date takenAt{};                              ///< when the pictures were taken
  Date postedAt{};                             ///< when the server received the post
  std::int64_t lateInSeconds = 0;              ///< how late, in seconds
  std::optional<FofQuibletsRootDto> quiblets;  ///< reactions; absent when the server leaves them out

  bool operator==(const FofPostDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&FofPostDto::id>("id"),
                      JSONField::of<&FofPostDto::user>("user"),
                      JSONField::of<&FofPostDto::moment>("moment"),
                      JSONField::of<&FofPostDto::primary>("primary"),
                      JSONField::of<&FofPostDto::secondary>("secondary"),
                      JSONField::of<&FofPostDto::location>("location"),
                      JSONField::of<&FofPostDto::caption>("caption"),
                      JSONField::of<&FofPostDto::takenAt>("takenAt"),
                      JSONField::of<&FofPostDto::postedAt>("postedAt"),
                      JSONField::of<&FofPostDto::lateInSeconds>("lateInSeconds"),
                      JSONField::of<&FofPostDto::quiblets>("quiblets")};
  }
};

}  // namespace ZAK
