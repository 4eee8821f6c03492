#pragma once

#include <zvapikit/http/HTTPError.hpp>
#include <zvapikit/http/HTTPHeaders.hpp>
#include <zvapikit/http/HTTPMetrics.hpp>
#include <zvapikit/http/HTTPStatusCode.hpp>

#include <optional>
#include <string>

namespace ZAK {

/// How an exchange ended: with an answer, with an error, or with both.
struct HTTPResponse {
  /// 0 when no answer came.
  HTTPStatusCode statusCode;
  HTTPHeaders headers;
  /// The body, decompressed; empty when there was none.
  std::string body;
  /// Present when no whole answer came, its status is outside 2xx, or a validator refused it.
  std::optional<HTTPError> error;
  /// Of the last attempt.
  HTTPMetrics metrics;
  /// True once the first line of an answer has come, so that the server has acted on the request; set by the client.
  bool answerStarted = false;

  /// True when an answer came, whatever its status.
  [[nodiscard]] bool hasAnswer() const noexcept { return statusCode.code() != 0; }
};

}  // namespace ZAK
