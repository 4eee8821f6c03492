#include "core/ErrorApiValidator.hpp"

#include "core/ErrorBody.hpp"

#include <zvapikit/json/JSONErrors.hpp>

namespace ZAK {

std::optional<ErrorDto> errorBody(const HTTPResponse& response, const JSONDecoder& decoder) {
  if (response.body.empty()) return std::nullopt;
  try {
    return decoder.decode<ErrorDto>(response.body);
  } catch (const DecodingError&) {
    return std::nullopt;
  }
}

HTTPValidatorResult ErrorApiValidator::validate(const HTTPResponse& response, const HTTPRequest&) {
  if (!response.error) return HTTPValidatorResult::next();
  auto error = errorBody(response, decoder_);
  if (!error) return HTTPValidatorResult::next();
  return HTTPValidatorResult::fail(std::make_shared<const ErrorDto>(std::move(*error)));
}

}  // namespace ZAK
