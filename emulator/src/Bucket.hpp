#pragma once

#include <zvapikit/json/Date.hpp>

#include <map>
#include <optional>
#include <string>

namespace ZAK {

/// The files of one environment's storage, and who may upload.
struct Bucket {
  /// What a signed URL allows: one file, with these headers, for some time.
  struct Grant {
    std::map<std::string, std::string> headers;
    Date expiresAt;
  };

  /// By path inside the bucket.
  std::map<std::string, std::string> files{};
  /// By target, so path and query as they were signed.
  std::map<std::string, Grant> grants{};
};

}  // namespace ZAK
