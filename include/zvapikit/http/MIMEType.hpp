#pragma once

#include <string_view>

namespace ZAK {

/// The media types that the kit sends.
struct MIMEType {
  static constexpr std::string_view json = "application/json";
  static constexpr std::string_view octetStream = "application/octet-stream";
  /// Type of every picture that is uploaded.
  static constexpr std::string_view uploadImage = "image/jpeg";
};

}  // namespace ZAK
