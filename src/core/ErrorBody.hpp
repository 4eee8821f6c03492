#pragma once

#include <zvapikit/core/ErrorDto.hpp>
#include <zvapikit/http/HTTPResponse.hpp>
#include <zvapikit/json/JSONDecoder.hpp>

#include <optional>

namespace ZAK {

/// The server's description of a failure, when the body is one.
[[nodiscard]] std::optional<ErrorDto> errorBody(const HTTPResponse& response, const JSONDecoder& decoder);

}  // namespace ZAK
