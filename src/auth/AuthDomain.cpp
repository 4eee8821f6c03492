#include "auth/AuthDomain.hpp"

#include "core/Log.hpp"

#include <zvapikit/auth/TokenRequestDto.hpp>

namespace ZAK {
namespace {

constexpr const char* clientId = "ios";

constexpr const char* clientSecret(Configuration::Environment environment) {
  return environment == Configuration::Environment::sandbox ? "D8B13E62-0F4A-47C9-8E15-B93A6C2D7F40"
                                                            : "5E0A41C7-93D2-4F18-B6A5-7C2D9E3F1048";
}

HTTPRequest tokenRequest(const std::string& base, const TokenRequestDto& body) {
  const bool slash = base.ends_with('/');
  HTTPRequest request(HTTPMethod::post, base + (slash ? "token" : "/token"));
  request.body = HTTPBody::json(body);
  request.addParameter("grant_type", std::string(rawValue(body.grantType)));
  return request;
}

}  // namespace

HTTPRequest AuthDomain::createTokenRequest(const std::string& base, Configuration::Environment environment,
                                           std::optional<std::string> firebaseToken,
                                           const DelegateReference<LoggerDelegate>& logger) {
  HTTPRequest request =
      tokenRequest(base, TokenRequestDto(TokenRequestDto::GrantType::firebase, clientId, clientSecret(environment),
                                         std::nullopt, std::move(firebaseToken)));
  Log::message(logger, "[Authentifier] create token request 🛂");
  return request;
}

HTTPRequest AuthDomain::refreshTokenRequest(const std::string& base, Configuration::Environment environment,
                                            const TokenDto& token, const DelegateReference<LoggerDelegate>& logger) {
  HTTPRequest request =
      tokenRequest(base, TokenRequestDto(TokenRequestDto::GrantType::refresh, clientId, clientSecret(environment),
                                         token.refreshToken, std::nullopt));
  Log::message(logger, "[Authentifier] refresh token request 🛂");
  return request;
}

}  // namespace ZAK
