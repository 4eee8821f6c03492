#include "auth/AuthentifierValidator.hpp"

#include <zvapikit/auth/TokenRequestDto.hpp>
#include <zvapikit/json/JSONDecoder.hpp>
#include <zvapikit/json/JSONErrors.hpp>

#include <optional>

namespace ZAK {
namespace {

std::optional<TokenRequestDto::GrantType> grantOf(const HTTPRequest& request) {
  if (request.body.contentType() != MIMEType::json) return std::nullopt;
  try {
    return JSONDecoder().decode<TokenRequestDto>(request.body.bytes()).grantType;
  } catch (const DecodingError&) {
    return std::nullopt;
  }
}

}  // namespace

HTTPValidatorResult AuthentifierValidator::validate(const HTTPResponse& response, const HTTPRequest& request) {
  const int status = response.statusCode.code();
  if (status < 301) return HTTPValidatorResult::next();
  const auto grant = grantOf(request);
  // A refresh token that is refused with 400 is spent: only a new Firebase grant helps.
  const bool again =
      grant == TokenRequestDto::GrantType::firebase || (grant == TokenRequestDto::GrantType::refresh && status != 400);
  return again ? HTTPValidatorResult::retry(HTTPRetryStrategy::exponential(2)) : HTTPValidatorResult::next();
}

}  // namespace ZAK
