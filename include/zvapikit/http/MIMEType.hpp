#pragma once

#include <string_view>

namespace ZAK {

/// The media types that the kit sends.
struct MIMEType {
  static constexpr std::string_view json = "application/json";                 ///< of records
  static constexpr std::string_view octetStream = "application/octet-stream";  ///< of any bytes
  static constexpr std::string_view uploadImage = "image/jpeg";                ///< of every picture that is uploaded
};

}  // namespace ZAK
