#pragma once

#include <zvapikit/json/Date.hpp>
#include <zvapikit/json/JSONType.hpp>
#include <zvapikit/json/URL.hpp>
#include <zvapikit/model/CreatePostDto.hpp>
#include <zvapikit/model/MediaDto.hpp>

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <utility>

namespace ZAK {

/// A signed URL for one upload straight into the storage bucket. Whoever has it may upload: keep it out of logs.
struct UploadUrlDto {
  UploadUrlDto() = default;
  /// All fields, in their order.
  UploadUrlDto(URL url_, Date expireAt_, std::string bucket_, std::string path_,
               std::map<std::string, std::string> headers_)
      : url(std::move(url_)),
        expireAt(expireAt_),
        bucket(std::move(bucket_)),
        path(std::move(path_)),
        headers(std::move(headers_)) {}

  URL url;                                     ///< receives the file by PUT
  Date expireAt{};                             ///< when the URL stops being accepted
  std::string bucket;                          ///< name of the storage bucket
  std::string path;                            ///< inside the bucket
  std::map<std::string, std::string> headers;  ///< to be sent with the upload, exactly as they are

  /// The uploaded picture as `AddInstantQuibletDto` and `ProfileQuibletUploadDto` name it; its size in pixels.
  [[nodiscard]] MediaBucketDto media(std::int64_t width, std::int64_t height) const {
    return MediaBucketDto(bucket, path, width, height);
  }
  /// The uploaded picture as `CreatePostDto` names it; its size in pixels.
  [[nodiscard]] CreatePostPictureDto picture(std::int64_t width, std::int64_t height) const {
    return CreatePostPictureDto(bucket, path, width, height);
  }

  bool operator==(const UploadUrlDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&UploadUrlDto::url>("url"), JSONField::of<&UploadUrlDto::expireAt>("expireAt"),
                      JSONField::of<&UploadUrlDto::bucket>("bucket"), JSONField::of<&UploadUrlDto::path>("path"),
                      JSONField::of<&UploadUrlDto::headers>("headers")};
  }
};

}  // namespace ZAK
