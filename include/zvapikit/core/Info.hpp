#pragma once

#include <zvapikit/Export.hpp>

#include <string_view>

namespace ZAK {

/// About the kit itself.
struct ZVAPIKIT_API Info {
  /// The version of the library that is linked, for example `1.0.0`.
  [[nodiscard]] static std::string_view version() noexcept;
};

}  // namespace ZAK
