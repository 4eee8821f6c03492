#pragma once

#include <optional>

#include <zvapikit/core/ErrorDto.hpp>
#include <zvapikit/http/HTTPResponse.hpp>
#include <zvapikit/json/JSONDecoder.hpp>

namespace ZAK {

/// The server's description of a failure, when the body is one.
[[nodiscard]] std::optional<ErrorDto> errorBody(const HTTPResponse& response, const JSONDecoder& decoder);

}  // namespace ZAK
