#include <zvapikit/auth/TokenDto.hpp>
#include <zvapikit/json/JSONErrors.hpp>

namespace ZAK {
namespace {

/// Two hundred thousand years: what added to a date of our times is still a date.
constexpr std::int64_t longestLife = 6'300'000'000'000;

Date expiry(const JSONValue& json) {
  if (const auto date = json.getIfPresent<Date>("expires_date")) return *date;
  const auto seconds = json.getIfPresent<std::int64_t>("expires_in");
  if (!seconds) {
    throw DecodingError::keyNotFound("expiresIn", {"expiresIn", "expiresDate"},
                                     "Missing key : expiresIn or expiresDate should exists");
  }
  if (*seconds > longestLife || *seconds < -longestLife)
    json.fail("The number of seconds in expires_in is no time span.");
  return json.now() + std::chrono::seconds(*seconds);
}

}  // namespace

TokenDto TokenDto::decodeJSON(const JSONValue& json) {
  TokenDto token;
  token.tokenType = json.get<std::string>("token_type");
  token.accessToken = json.get<std::string>("access_token");
  token.refreshToken = json.get<std::string>("refresh_token");
  token.scope = json.get<std::string>("scope");
  token.firebaseToken = json.getIfPresent<std::string>("firebase_token");
  token.expiresDate = expiry(json);
  return token;
}

void TokenDto::encodeJSON(JSONWriter& writer) const {
  writer.beginObject();
  writer.field("token_type", tokenType);
  writer.field("access_token", accessToken);
  writer.field("refresh_token", refreshToken);
  writer.field("scope", scope);
  writer.field("firebase_token", NullEncodable(firebaseToken));
  writer.field("expires_date", expiresDate);
  writer.endObject();
}

}  // namespace ZAK
