#pragma once

#include <zvapikit/json/Date.hpp>
#include <zvapikit/json/JSONType.hpp>
#include <zvapikit/model/PostVisibilityDto.hpp>

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace ZAK {

/// Where an uploaded picture of a new post lies in the storage bucket.
struct CreatePostPictureDto {
  CreatePostPictureDto() = default;
  /// All fields, in their order.
  CreatePostPictureDto(std::string bucket_, std::string path_, std::int64_t width_, std::int64_t height_)
      : bucket(std::move(bucket_)), path(std::move(path_)), width(width_), height(height_) {}

  std::string bucket;       ///< name of the storage bucket
  std::string path;         ///< inside the bucket
  std::int64_t width = 0;   ///< pixels
  std::int64_t height = 0;  ///< pixels

  bool operator==(const CreatePostPictureDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{
        JSONField::of<&CreatePostPictureDto::bucket>("bucket"), JSONField::of<&CreatePostPictureDto::path>("path"),
        JSONField::of<&CreatePostPictureDto::width>("width"), JSONField::of<&CreatePostPictureDto::height>("height")};
  }
};

/// Where a new post was taken.
struct CreatePostLocationDto {
  CreatePostLocationDto() = default;
  /// All fields, in their order.
  CreatePostLocationDto(double latitude_, double longitude_) : latitude(latitude_), longitude(longitude_) {}

  double latitude = 0;   ///< degrees, north is positive
  double longitude = 0;  ///< degrees, east is positive

  bool operator==(const CreatePostLocationDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&CreatePostLocationDto::latitude>("latitude"),
                      JSONField::of<&CreatePostLocationDto::longitude>("longitude")};
  }
};

/// A post to be created, its pictures already uploaded.
struct CreatePostDto {
  CreatePostDto() = default;
  /// All fields, in their order.
  CreatePostDto(Date takenAt_, CreatePostPictureDto backCamera_, CreatePostPictureDto frontCamera_, bool isLate_,
                std::vector<PostVisibilityDto> visibility_, std::int64_t retakeCounter_,
                std::optional<CreatePostLocationDto> location_)
      : takenAt(takenAt_),
        backCamera(std::move(backCamera_)),
        frontCamera(std::move(frontCamera_)),
        isLate(isLate_),
        visibility(std::move(visibility_)),
        retakeCounter(retakeCounter_),
        location(std::move(location_)) {}

  Date takenAt{};                                 ///< when the pictures were taken
  CreatePostPictureDto backCamera;                ///< main picture, already uploaded
  CreatePostPictureDto frontCamera;               ///< inset picture, already uploaded
  bool isLate = false;                            ///< late for its moment
  std::vector<PostVisibilityDto> visibility;      ///< who may see the post
  std::int64_t retakeCounter = 0;                 ///< how often the pictures were taken anew
  std::optional<CreatePostLocationDto> location;  ///< where they were taken; left out when absent

  bool operator==(const CreatePostDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&CreatePostDto::takenAt>("takenAt"),
                      JSONField::of<&CreatePostDto::backCamera>("backCamera"),
                      JSONField::of<&CreatePostDto::frontCamera>("frontCamera"),
                      JSONField::of<&CreatePostDto::isLate>("isLate"),
                      JSONField::of<&CreatePostDto::visibility>("visibility"),
                      JSONField::of<&CreatePostDto::retakeCounter>("retakeCounter"),
                      JSONField::of<&CreatePostDto::location>("location")};
  }
};

/// The identifier of a post.
struct NewPostDto {
  std::string id;  ///< identifier of the post

  bool operator==(const NewPostDto&) const = default;
  static constexpr auto jsonFields() { return std::array{JSONField::of<&NewPostDto::id>("id")}; }
};

}  // namespace ZAK
