#pragma once

#include <zvapikit/auth/TokenDto.hpp>

#include <optional>

namespace ZAK {

/// Where the token survives restarts. Neither operation fails towards its caller.
///
/// Thread safety: one call at a time.
class TokenStorage {
 public:
  virtual ~TokenStorage() = default;

  /// Absent when nothing is stored or what is stored cannot be read.
  virtual std::optional<TokenDto> get() = 0;
  /// Stores the token, or removes the stored one when given none.
  virtual void set(const std::optional<TokenDto>& token) = 0;
};

}  // namespace ZAK
