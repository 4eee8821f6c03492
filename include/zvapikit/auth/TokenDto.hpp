#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/json/Date.hpp>
#include <zvapikit/json/JSONValue.hpp>
#include <zvapikit/json/JSONWriter.hpp>

#include <optional>
#include <string>
#include <utility>

namespace ZAK {

/// What signs the user's requests, as the authentication server gives it and as the keychain keeps it.
///
/// Read from `expires_date` or, where that is missing, from `expires_in` seconds after the decoder's `now`; always
/// written with `expires_date`, and with `firebase_token` as null when there is none.
struct ZVAPIKIT_API TokenDto {
  TokenDto() = default;
  /// All fields, in their order.
  TokenDto(std::string tokenType_, std::string accessToken_, Date expiresDate_, std::string refreshToken_,
           std::string scope_, std::optional<std::string> firebaseToken_)
      : tokenType(std::move(tokenType_)),
        accessToken(std::move(accessToken_)),
        expiresDate(expiresDate_),
        refreshToken(std::move(refreshToken_)),
        scope(std::move(scope_)),
        firebaseToken(std::move(firebaseToken_)) {}

  std::string tokenType;                     ///< how the token is sent, for example `bearer`
  std::string accessToken;                   ///< sent as the bearer of every request
  Date expiresDate{};                        ///< when the token stops being valid
  std::string refreshToken;                  ///< exchanged for the next token
  std::string scope;                         ///< what the token allows, as the server writes it
  std::optional<std::string> firebaseToken;  ///< as the server gave it, if it did

  bool operator==(const TokenDto&) const = default;
  static TokenDto decodeJSON(const JSONValue& json);
  void encodeJSON(JSONWriter& writer) const;
};

}  // namespace ZAK
