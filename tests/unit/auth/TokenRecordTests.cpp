#include "support/DecodingFailure.hpp"
#include "support/Samples.hpp"

#include <zvapikit/auth/TokenDto.hpp>
#include <zvapikit/json/JSONEncoder.hpp>

#include <gtest/gtest.h>

#include <string>

namespace ZAK {
namespace {

using nlohmann::json;

const Date now(std::chrono::microseconds(1680714552345678));
const JSONDecoder decoder(JSONDateStrategy::javaScriptISO8601, [] { return now; });

json with(json sample, const char* key, json value) {
  sample[key] = std::move(value);
  return sample;
}

json without(json sample, const char* key) {
  sample.erase(key);
  return sample;
}

TEST(TokenDto, TakesItsExpiryFromTheDateOrElseFromTheSpan) {
  const json sample = Tests::sample("TokenDto");
  const json spanned = without(sample, "expires_date");
  const auto expiry = [](const json& body) { return decoder.decode<TokenDto>(body.dump()).expiresDate; };
  const Date date(std::chrono::seconds(1680717600));  // 2023-04-05T18:00:00Z
  EXPECT_EQ(expiry(sample), date);
  EXPECT_EQ(expiry(with(sample, "expires_in", "not looked at")), date);
  EXPECT_EQ(expiry(with(spanned, "expires_in", 3600)), now + std::chrono::hours(1));
  EXPECT_EQ(expiry(with(with(sample, "expires_date", nullptr), "expires_in", -60.0)), now - std::chrono::minutes(1));
  for (const json& span : {json(INT64_MAX), json(INT64_MIN), json(6300000000001), json(1.5), json("3600")}) {
    EXPECT_THROW(expiry(with(spanned, "expires_in", span)), DecodingError) << span;
  }
  EXPECT_NO_THROW(expiry(with(spanned, "expires_in", 6300000000000)));
}

TEST(TokenDto, RequiresItsFieldsInItsOwnOrder) {
  const json sample = Tests::sample("TokenDto");
  const DecodingError error = Tests::decodingError<TokenDto>(without(sample, "expires_date").dump());
  EXPECT_EQ(error.codingPath(), (std::vector<CodingKey>{"expiresIn", "expiresDate"}));
  EXPECT_EQ(error.debugDescription(), "Missing key : expiresIn or expiresDate should exists");
  json body = json::object();
  for (const char* key : {"token_type", "access_token", "refresh_token", "scope"}) {
    EXPECT_EQ(Tests::decodingError<TokenDto>(body.dump()).key(), key);
    for (const json& wrong : {json(5), json()}) {
      const DecodingError fault = Tests::decodingError<TokenDto>(with(sample, key, wrong).dump());
      EXPECT_EQ(fault.codingPath(), std::vector<CodingKey>{key});
    }
    body[key] = "x";
  }
}

TEST(TokenDto, IsWrittenInFullAndReadBackEqual) {
  const TokenDto token("Bearer", "access-1", now, "refresh-1", "all", std::nullopt);
  const JSONDateStrategy seconds = JSONDateStrategy::secondsSince2001;
  const std::string stored = JSONEncoder(seconds).encode(token);
  EXPECT_EQ(stored, R"({"token_type":"Bearer","access_token":"access-1","refresh_token":"refresh-1","scope":"all",)"
                    R"("firebase_token":null,"expires_date":702407352.345678})");
  EXPECT_EQ(JSONDecoder(seconds).decode<TokenDto>(stored), token);
}

}  // namespace
}  // namespace ZAK
