#include "Call.hpp"

namespace ZAK {

using nlohmann::json;

namespace {

constexpr std::string_view clientSecret(EmulatorEnvironment environment) {
  return environment == EmulatorEnvironment::production ? "5E0A41C7-93D2-4F18-B6A5-7C2D9E3F1048"
                                                        : "D8B13E62-0F4A-47C9-8E15-B93A6C2D7F40";
}

EmulatorResponse tokenResponse(const Call& call, const TokenStore::Issued& issued) {
  json body{
      {"token_type", "bearer"}, {"access_token", issued.access}, {"refresh_token", issued.refresh}, {"scope", ""}};
  if (call.options.tokenExpiry == EmulatorOptions::TokenExpiry::date) {
    body["expires_date"] = EmulatorText::dateText(issued.expires);
  } else {
    body["expires_in"] = call.options.tokenLifetime.count();
  }
  return jsonResponse(body, 201);
}

std::string firebaseUser(const Call& call, const std::string& token) {
  constexpr std::string_view prefix = "firebase-";
  const auto registered = call.world.firebaseTokens.find(token);
  if (registered != call.world.firebaseTokens.end()) return registered->second;
  if (call.options.acceptsFirebaseUsers && token.starts_with(prefix) && token.size() > prefix.size()) {
    return token.substr(prefix.size());
  }
  throw Refusal(401, "the Firebase token is not valid");
}

EmulatorResponse firebaseGrant(Call& call, const json& body) {
  if (body.contains("refresh_token")) throw Refusal(400, "refresh_token does not belong to this grant");
  if (!body.contains("token")) throw Refusal(call.options.statusWithoutFirebaseToken, "token is missing");
  const std::string userId = firebaseUser(call, textField(body, "token"));
  call.world.ensureUser(userId);
  return tokenResponse(call, call.world.tokens.issue(userId, call.now + call.options.tokenLifetime));
}

EmulatorResponse refreshGrant(Call& call, const json& body) {
  if (body.contains("token")) throw Refusal(400, "token does not belong to this grant");
  if (!body.contains("refresh_token")) throw Refusal(400, "refresh_token is missing");
  const auto issued =
      call.world.tokens.refresh(textField(body, "refresh_token"), call.now + call.options.tokenLifetime);
  if (!issued) throw Refusal(400, "the refresh token is not valid");
  return tokenResponse(call, *issued);
}

EmulatorResponse createToken(Call& call) {
  const std::string grant = call.queryValue("grant_type");
  const json body = call.body({"grant_type", "client_id", "client_secret"}, {"refresh_token", "token"});
  if (textField(body, "grant_type") != grant) throw Refusal(400, "the grant types of query and body differ");
  if (textField(body, "client_id") != "ios") throw Refusal(401, "the client is not known");
  if (textField(body, "client_secret") != clientSecret(call.world.environment)) {
    throw Refusal(401, "the client secret is not the one of this environment");
  }
  if (grant == "firebase") return firebaseGrant(call, body);
  if (grant == "refresh_token") return refreshGrant(call, body);
  throw Refusal(400, "the grant type is not known");
}

}  // namespace

void addAuthenticationRoutes(Router& router) { router.add("POST", "/token", &createToken); }

}  // namespace ZAK
