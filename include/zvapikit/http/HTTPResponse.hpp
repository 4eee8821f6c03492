#pragma once

#include <zvapikit/http/HTTPError.hpp>
#include <zvapikit/http/HTTPHeaders.hpp>
#include <zvapikit/http/HTTPMetrics.hpp>
#include <zvapikit/http/HTTPStatusCode.hpp>

#include <filesystem>
#include <optional>
#include <string>

namespace ZAK {

/// How an exchange ended: with an answer, with an error, or with both.
///
/// Thread safety: as a standard container.
struct HTTPResponse {
  /// The answer's status; 0 when no answer came.
  HTTPStatusCode statusCode;
  /// The answer's headers.
  HTTPHeaders headers;
  /// The body, decompressed; empty when there was none, or when it went to a file.
  std::string body;
  /// The request's destination, now holding the whole body. Absent when the request named none, the answer's status is
  /// not 2xx, or the answer has no content to keep (status 204 or 205, or the answer to a HEAD).
  std::optional<std::filesystem::path> file{};
  /// Present when no whole answer came, its status is outside 2xx, or a validator refused it.
  std::optional<HTTPError> error;
  /// What the last attempt cost.
  HTTPMetrics metrics;
  /// True once the first line of an answer has come, so that the server has acted on the request; set by the client.
  bool answerStarted = false;

  /// True when an answer came, whatever its status.
  [[nodiscard]] bool hasAnswer() const noexcept { return statusCode.code() != 0; }
};

}  // namespace ZAK
