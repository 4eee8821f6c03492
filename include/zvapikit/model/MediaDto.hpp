#pragma once

#include <zvapikit/json/JSONType.hpp>
#include <zvapikit/json/URL.hpp>

#include <array>
#include <cstdint>
#include <string>
#include <utility>

namespace ZAK {

/// A picture or video that the server hosts.
struct MediaDto {
  URL url;            ///< where to download it
  double width = 0;   ///< pixels
  double height = 0;  ///< pixels

  bool operator==(const MediaDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&MediaDto::url>("url"), JSONField::of<&MediaDto::width>("width"),
                      JSONField::of<&MediaDto::height>("height")};
  }
};

/// A file that the host has uploaded, named by its place in the storage bucket. Its size counts whole pixels, unlike
/// that of a hosted `MediaDto`.
struct MediaBucketDto {
  MediaBucketDto() = default;
  /// All fields, in their order.
  MediaBucketDto(std::string bucket_, std::string path_, std::int64_t width_, std::int64_t height_)
      : bucket(std::move(bucket_)), path(std::move(path_)), width(width_), height(height_) {}

  std::string bucket;       ///< name of the storage bucket
  std::string path;         ///< inside the bucket
  std::int64_t width = 0;   ///< pixels
  std::int64_t height = 0;  ///< pixels

  bool operator==(const MediaBucketDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&MediaBucketDto::bucket>("bucket"), JSONField::of<&MediaBucketDto::path>("path"),
                      JSONField::of<&MediaBucketDto::width>("width"), JSONField::of<&MediaBucketDto::height>("height")};
  }
};

}  // namespace ZAK
