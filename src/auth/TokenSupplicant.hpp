#pragma once

#include <zvapikit/auth/TokenDto.hpp>

#include <boost/asio/awaitable.hpp>

namespace ZAK {

/// Obtains tokens from the authentication server. The awaitables keep the supplicant alive; failures are thrown.
class TokenSupplicant {
 public:
  virtual ~TokenSupplicant() = default;

  /// With the Firebase grant.
  virtual boost::asio::awaitable<TokenDto> createToken() = 0;
  /// With the refresh grant, from the token's refresh token.
  virtual boost::asio::awaitable<TokenDto> refreshToken(TokenDto token) = 0;
};

}  // namespace ZAK
