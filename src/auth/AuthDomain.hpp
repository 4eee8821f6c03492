#pragma once

#include <zvapikit/auth/TokenDto.hpp>
#include <zvapikit/core/Configuration.hpp>
#include <zvapikit/core/DelegateReference.hpp>
#include <zvapikit/core/LoggerDelegate.hpp>
#include <zvapikit/http/HTTPRequest.hpp>

#include <optional>
#include <string>

namespace ZAK {

/// The two requests to the authentication server's token endpoint. Both tell the grant twice, in the query and in the
/// body, and neither carries a retry limit yet.
struct AuthDomain {
  /// Trades a Firebase ID token, or none, for a token. `base` is the authentication server's base URL.
  static HTTPRequest createTokenRequest(const std::string& base, Configuration::Environment environment,
                                        std::optional<std::string> firebaseToken,
                                        const DelegateReference<LoggerDelegate>& logger);
  /// Trades a token's refresh token for a new token.
  static HTTPRequest refreshTokenRequest(const std::string& base, Configuration::Environment environment,
                                         const TokenDto& token, const DelegateReference<LoggerDelegate>& logger);
};

}  // namespace ZAK
