#pragma once

#include <zvapikit/json/Date.hpp>
#include <zvapikit/json/JSONType.hpp>
#include <zvapikit/model/MediaDto.hpp>
#include <zvapikit/model/PostVisibilityDto.hpp>
#include <zvapikit/model/RegionCodeDto.hpp>
#include <zvapikit/model/RelationshipsStatusDto.hpp>
#include <zvapikit/model/SampleCollectionDto.hpp>

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace ZAK {

/// A person as shown on a post, comment, reaction or screenshot.
struct PostPerson {
  std::string id;                                ///< identifier of the user
  std::string username;                          ///< unique name
  std::optional<std::string> fullname;           ///< as the user gave it
  std::optional<MediaDto> profilePicture;        ///< absent when there is none
  std::optional<RelationshipsStatusDto> status;  ///< how the reader is related to this person

  bool operator==(const PostPerson&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&PostPerson::id>("id"), JSONField::of<&PostPerson::username>("username"),
                      JSONField::of<&PostPerson::fullname>("fullname"),
                      JSONField::of<&PostPerson::profilePicture>("profilePicture"),
                      JSONField::of<&PostPerson::status>("status")};
  }
};

/// The moment that a post belongs to.
struct PostMomentDto {
  std::string id;        ///< identifier of the moment
  RegionCodeDto region;  ///< whose moment it was

  bool operator==(const PostMomentDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&PostMomentDto::id>("id"), JSONField::of<&PostMomentDto::region>("region")};
  }
};

/// Where a post was taken.
struct PostLocationDto {
  double latitude = 0;   ///< degrees, north is positive
  double longitude = 0;  ///< degrees, east is positive

  bool operator==(const PostLocationDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&PostLocationDto::latitude>("latitude"),
                      JSONField::of<&PostLocationDto::longitude>("longitude")};
  }
};

/// One reaction selfie on a post.
struct PostQuibletDto {
  std::string id;          ///< identifier of the reaction
  PostPerson user;         ///< who reacted
  std::string emoji;       ///< what the reaction stands for
  bool isInstant = false;  ///< true for a selfie taken for this post, false for a stored one
  MediaDto media;          ///< the selfie
  Date postedAt{};         ///< when the user reacted

  bool operator==(const PostQuibletDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{
        JSONField::of<&PostQuibletDto::id>("id"),       JSONField::of<&PostQuibletDto::user>("user"),
        JSONField::of<&PostQuibletDto::emoji>("emoji"), JSONField::of<&PostQuibletDto::isInstant>("isInstant"),
        JSONField::of<&PostQuibletDto::media>("media"), JSONField::of<&PostQuibletDto::postedAt>("postedAt")};
  }
};

/// One comment on a post.
struct PostCommentDto {
  std::string id;       ///< identifier of the comment
  PostPerson user;      ///< author
  Date postedAt{};      ///< when the comment was made
  std::string content;  ///< in the author's words

  bool operator==(const PostCommentDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&PostCommentDto::id>("id"), JSONField::of<&PostCommentDto::user>("user"),
                      JSONField::of<&PostCommentDto::postedAt>("postedAt"),
                      JSONField::of<&PostCommentDto::content>("content")};
  }
};

/// One screenshot that somebody took of a post.
struct PostScreenshotDto {
  std::string id;   ///< identifier of the event
  PostPerson user;  ///< who took it

  bool operator==(const PostScreenshotDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&PostScreenshotDto::id>("id"), JSONField::of<&PostScreenshotDto::user>("user")};
  }
};

/// A post of the user or a friend.
struct PostDto {
  std::string id;                                            ///< identifier of the post
  PostPerson user;                                           ///< author
  PostMomentDto moment;                                      ///< the moment it was posted for
  std::optional<std::vector<PostVisibilityDto>> visibility;  ///< who may see it; absent when the server does not say
  std::optional<PostLocationDto> location;  ///< where the pictures were taken; absent unless the author tells
  std::optional<std::string> caption;       ///< the author's words; absent when there are none
  std::int64_t retakeCounter = 0;           ///< how often the pictures were taken anew
  bool isLate = false;                      ///< late for its moment
  std::int64_t lateInSeconds = 0;           ///< how late, in seconds
  MediaDto primary;                         ///< main picture
  MediaDto secondary;                       ///< inset picture
  std::optional<SampleCollectionDto<PostQuibletDto>> quiblets;  ///< reactions; absent when the server leaves them out
  std::optional<SampleCollectionDto<PostCommentDto>> comments;  ///< absent when the server leaves them out
  std::optional<SampleCollectionDto<PostScreenshotDto>> screenshots;  ///< of the users who took one
  Date takenAt{};                                                     ///< when the pictures were taken
  Date createdAt{};                                                   ///< when the server received the post

  bool operator==(const PostDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&PostDto::id>("id"),
                      JSONField::of<&PostDto::user>("user"),
                      JSONField::of<&PostDto::moment>("moment"),
                      JSONField::of<&PostDto::visibility>("visibility"),
                      JSONField::of<&PostDto::location>("location"),
                      JSONField::of<&PostDto::caption>("caption"),
                      JSONField::of<&PostDto::retakeCounter>("retakeCounter"),
                      JSONField::of<&PostDto::isLate>("isLate"),
                      JSONField::of<&PostDto::lateInSeconds>("lateInSeconds"),
                      JSONField::of<&PostDto::primary>("primary"),
                      JSONField::of<&PostDto::secondary>("secondary"),
                      JSONField::of<&PostDto::quiblets>("quiblets"),
                      JSONField::of<&PostDto::comments>("comments"),
                      JSONField::of<&PostDto::screenshots>("screenshots"),
                      JSONField::of<&PostDto::takenAt>("takenAt"),
                      JSONField::of<&PostDto::createdAt>("createdAt")};
  }
};

}  // namespace ZAK
