#pragma once

#include <zvapikit/json/JSONType.hpp>

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace ZAK {

/// On the strength of what a token is asked for. An unknown text fails to decode.
enum class TokenGrantType {
  refresh,  ///< of a refresh token; text `refresh_token`
  firebase  ///< of a Firebase ID token
};

template <>
struct RawValues<TokenGrantType> {
  static constexpr std::string_view name = "GrantType";
  static constexpr std::array cases = {RawCase{TokenGrantType::refresh, "refresh_token"},
                                       RawCase{TokenGrantType::firebase, "firebase"}};
};

/// The body that asks the authentication server for a token.
struct TokenRequestDto {
  /// `TokenGrantType` under its short name.
  using GrantType = TokenGrantType;

  TokenRequestDto() = default;
  /// All fields, in their order.
  TokenRequestDto(GrantType grantType_, std::string clientId_, std::string clientSecret_,
                  std::optional<std::string> refreshToken_, std::optional<std::string> token_)
      : grantType(grantType_),
        clientId(std::move(clientId_)),
        clientSecret(std::move(clientSecret_)),
        refreshToken(std::move(refreshToken_)),
        token(std::move(token_)) {}

  GrantType grantType = GrantType::refresh;  ///< what is offered for the token
  std::string clientId;                      ///< names the app to the server
  std::string clientSecret;                  ///< goes with the identifier, one an environment
  std::optional<std::string> refreshToken;   ///< for a refresh
  std::optional<std::string> token;          ///< the Firebase ID token, for a Firebase grant

  bool operator==(const TokenRequestDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&TokenRequestDto::grantType>("grant_type"),
                      JSONField::of<&TokenRequestDto::clientId>("client_id"),
                      JSONField::of<&TokenRequestDto::clientSecret>("client_secret"),
                      JSONField::of<&TokenRequestDto::refreshToken>("refresh_token"),
                      JSONField::of<&TokenRequestDto::token>("token")};
  }
};

}  // namespace ZAK
