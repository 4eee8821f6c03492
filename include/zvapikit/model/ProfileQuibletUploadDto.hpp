#pragma once

#include <zvapikit/json/JSONType.hpp>
#include <zvapikit/model/MediaDto.hpp>

#include <array>
#include <string>
#include <utility>

namespace ZAK {

/// Body that stores an uploaded reaction selfie.
struct ProfileQuibletUploadDto {
  ProfileQuibletUploadDto() = default;
  /// All fields, in their order.
  ProfileQuibletUploadDto(std::string emoji_, MediaBucketDto media_)
      : emoji(std::move(emoji_)), media(std::move(media_)) {}

  std::string emoji;     ///< what it stands for
  MediaBucketDto media;  ///< where it was uploaded

  bool operator==(const ProfileQuibletUploadDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&ProfileQuibletUploadDto::emoji>("emoji"),
                      JSONField::of<&ProfileQuibletUploadDto::media>("media")};
  }
};

/// Body that removes a stored reaction selfie.
struct ProfileQuibletDeleteDto {
  std::string emoji;  ///< what it stands for

  bool operator==(const ProfileQuibletDeleteDto&) const = default;
  static constexpr auto jsonFields() { return std::array{JSONField::of<&ProfileQuibletDeleteDto::emoji>("emoji")}; }
};

}  // namespace ZAK
