#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/json/Date.hpp>
#include <zvapikit/json/JSONType.hpp>
#include <zvapikit/json/URL.hpp>
#include <zvapikit/model/MediaDto.hpp>
#include <zvapikit/model/RegionCodeDto.hpp>

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace ZAK {

/// A person as shown in the older post layout.
struct LegacyPostUserDto {
  std::string id;                          ///< identifier of the user
  std::string username;                    ///< unique name
  std::optional<MediaDto> profilePicture;  ///< absent when there is none

  bool operator==(const LegacyPostUserDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&LegacyPostUserDto::id>("id"),
                      JSONField::of<&LegacyPostUserDto::username>("username"),
                      JSONField::of<&LegacyPostUserDto::profilePicture>("profilePicture")};
  }
};

/// An instant in the older post layout, which knows no other form of one.
struct ZVAPIKIT_API LegacyPostDateDto {
  std::int64_t _seconds = 0;      ///< whole seconds since 1970-01-01T00:00:00Z
  std::int64_t _nanoseconds = 0;  ///< fraction of the second

  /// The same as a `Date`, to the nearest microsecond; the first or last `Date` when it lies beyond.
  [[nodiscard]] Date date() const noexcept;

  bool operator==(const LegacyPostDateDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&LegacyPostDateDto::_seconds>("_seconds"),
                      JSONField::of<&LegacyPostDateDto::_nanoseconds>("_nanoseconds")};
  }
};

/// Where a post was taken.
struct LegacyPostLocation {
  double _latitude = 0;   ///< degrees, north is positive
  double _longitude = 0;  ///< degrees, east is positive

  bool operator==(const LegacyPostLocation&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&LegacyPostLocation::_latitude>("_latitude"),
                      JSONField::of<&LegacyPostLocation::_longitude>("_longitude")};
  }
};

/// One reaction selfie in the older post layout.
struct LegacyPostQuibletDto {
  std::string id;          ///< identifier of the reaction
  std::string uid;         ///< identifier of the user who reacted
  LegacyPostUserDto user;  ///< the same user
  LegacyPostDateDto date;  ///< when the user reacted
  std::string emoji;       ///< what the reaction stands for
  std::string type;        ///< kind of reaction, any text
  URL uri;                 ///< the selfie
  std::string userName;    ///< the user's unique name

  bool operator==(const LegacyPostQuibletDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&LegacyPostQuibletDto::id>("id"),
                      JSONField::of<&LegacyPostQuibletDto::uid>("uid"),
                      JSONField::of<&LegacyPostQuibletDto::user>("user"),
                      JSONField::of<&LegacyPostQuibletDto::date>("date"),
                      JSONField::of<&LegacyPostQuibletDto::emoji>("emoji"),
                      JSONField::of<&LegacyPostQuibletDto::type>("type"),
                      JSONField::of<&LegacyPostQuibletDto::uri>("uri"),
                      JSONField::of<&LegacyPostQuibletDto::userName>("userName")};
  }
};

/// One comment in the older post layout.
struct LegacyPostCommentDto {
  std::string id;                  ///< identifier of the comment
  std::string uid;                 ///< identifier of the author
  LegacyPostUserDto user;          ///< the author
  LegacyPostDateDto creationDate;  ///< when the comment was made
  std::string text;                ///< in the author's words
  std::string userName;            ///< the author's unique name

  bool operator==(const LegacyPostCommentDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&LegacyPostCommentDto::id>("id"),
                      JSONField::of<&LegacyPostCommentDto::uid>("uid"),
                      JSONField::of<&LegacyPostCommentDto::user>("user"),
                      JSONField::of<&LegacyPostCommentDto::creationDate>("creationDate"),
                      JSONField::of<&LegacyPostCommentDto::text>("text"),
                      JSONField::of<&LegacyPostCommentDto::userName>("userName")};
  }
};

/// One screenshot that somebody took of a post.
struct LegacyPostScreenshotDto {
  std::string id;          ///< identifier of the event
  LegacyPostUserDto user;  ///< who took it

  bool operator==(const LegacyPostScreenshotDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&LegacyPostScreenshotDto::id>("id"),
                      JSONField::of<&LegacyPostScreenshotDto::user>("user")};
  }
};

/// A post of the friends feed or the discovery feed, which still arrive in an older layout.
struct LegacyPostDto {
  std::string id;                                         ///< identifier of the post
  LegacyPostUserDto user;                                 ///< author
  std::string notificationID;                             ///< identifier of the notification that opened the moment
  RegionCodeDto region;                                   ///< whose moment it was
  LegacyPostDateDto creationDate;                         ///< when the server received the post
  LegacyPostDateDto takenAt;                              ///< when the pictures were taken
  std::optional<std::int64_t> updatedAt;                  ///< a bare number, in the server's own units
  std::int64_t lateInSeconds = 0;                         ///< how late, in seconds
  URL photoURL;                                           ///< main picture
  double imageHeight = 0;                                 ///< of the main picture, pixels
  double imageWidth = 0;                                  ///< of the main picture, pixels
  URL secondaryPhotoURL;                                  ///< inset picture
  double secondaryImageHeight = 0;                        ///< of the inset picture, pixels
  double secondaryImageWidth = 0;                         ///< of the inset picture, pixels
  std::optional<std::string> geoHash;                     ///< where the pictures were taken, as a geohash
  std::optional<LegacyPostLocation> location;             ///< absent unless the author tells
  std::optional<std::string> caption{};                   ///< the author's words; absent when there are none
  std::optional<std::vector<std::string>> screenshots{};  ///< identifiers of the users who took one
  std::optional<std::vector<LegacyPostScreenshotDto>> screenshotsV2{};  ///< the same with the users
  std::optional<std::vector<LegacyPostCommentDto>> comment{};           ///< all comments, singular as the key is
  std::optional<std::vector<LegacyPostQuibletDto>> quiblets{};          ///< all reactions
  std::optional<std::vector<std::string>> visibility{};  ///< raw values, not only those of `PostVisibilityDto`
  std::optional<std::int64_t> retakeCounter{};           ///< how often the pictures were taken anew

  bool operator==(const LegacyPostDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&LegacyPostDto::id>("id"),
                      JSONField::of<&LegacyPostDto::user>("user"),
                      JSONField::of<&LegacyPostDto::notificationID>("notificationID"),
                      JSONField::of<&LegacyPostDto::region>("region"),
                      JSONField::of<&LegacyPostDto::creationDate>("creationDate"),
                      JSONField::of<&LegacyPostDto::takenAt>("takenAt"),
                      JSONField::of<&LegacyPostDto::updatedAt>("updatedAt"),
                      JSONField::of<&LegacyPostDto::lateInSeconds>("lateInSeconds"),
                      JSONField::of<&LegacyPostDto::photoURL>("photoURL"),
                      JSONField::of<&LegacyPostDto::imageHeight>("imageHeight"),
                      JSONField::of<&LegacyPostDto::imageWidth>("imageWidth"),
                      JSONField::of<&LegacyPostDto::secondaryPhotoURL>("secondaryPhotoURL"),
                      JSONField::of<&LegacyPostDto::secondaryImageHeight>("secondaryImageHeight"),
                      JSONField::of<&LegacyPostDto::secondaryImageWidth>("secondaryImageWidth"),
                      JSONField::of<&LegacyPostDto::geoHash>("geoHash"),
                      JSONField::of<&LegacyPostDto::location>("location"),
                      JSONField::of<&LegacyPostDto::caption>("caption"),
                      JSONField::of<&LegacyPostDto::screenshots>("screenshots"),
                      JSONField::of<&LegacyPostDto::screenshotsV2>("screenshotsV2"),
                      JSONField::of<&LegacyPostDto::comment>("comment"),
                      JSONField::of<&LegacyPostDto::quiblets>("quiblets"),
                      JSONField::of<&LegacyPostDto::visibility>("visibility"),
                      JSONField::of<&LegacyPostDto::retakeCounter>("retakeCounter")};
  }
};

}  // namespace ZAK
