#pragma once

#include <zvapikit/json/Date.hpp>
#include <zvapikit/json/JSONType.hpp>
#include <zvapikit/json/URL.hpp>

#include <array>
#include <map>
#include <string>
#include <utility>

namespace ZAK {

/// A signed URL for one upload straight into the storage bucket. Whoever has it may upload: keep it out of logs.
struct UploadUrlDto {
  UploadUrlDto() = default;
  UploadUrlDto(URL url_, Date expireAt_, std::string bucket_, std::string path_,
               std::map<std::string, std::string> headers_)
      : url(std::move(url_)),
        expireAt(expireAt_),
        bucket(std::move(bucket_)),
        path(std::move(path_)),
        headers(std::move(headers_)) {}

  URL url;          ///< receives the file
  Date expireAt{};  ///< when the URL stops being accepted
  std::string bucket;
  std::string path;                            ///< inside the bucket
  std::map<std::string, std::string> headers;  ///< to be sent with the upload, exactly as they are

  bool operator==(const UploadUrlDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&UploadUrlDto::url>("url"), JSONField::of<&UploadUrlDto::expireAt>("expireAt"),
                      JSONField::of<&UploadUrlDto::bucket>("bucket"), JSONField::of<&UploadUrlDto::path>("path"),
                      JSONField::of<&UploadUrlDto::headers>("headers")};
  }
};

}  // namespace ZAK
