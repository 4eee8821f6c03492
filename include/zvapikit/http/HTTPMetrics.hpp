#pragma once

#include <zvapikit/http/HTTPStatusCode.hpp>

#include <chrono>
#include <cstdint>
#include <string>

namespace ZAK {

/// What came of one attempt and what it cost. All instants are measured from the moment the attempt was handed to the
/// transport; a phase that did not take place (name look-up, connecting and TLS on a connection used again) is zero.
///
/// Thread safety: as a standard container.
struct HTTPMetrics {
  std::chrono::microseconds nameLookup{};     ///< until the name was resolved
  std::chrono::microseconds connect{};        ///< until the connection stood
  std::chrono::microseconds secureConnect{};  ///< until TLS was agreed
  std::chrono::microseconds firstByte{};      ///< until the first byte of the answer
  std::chrono::microseconds total{};          ///< until the end
  std::uint64_t bytesSent = 0;                ///< body bytes, as sent
  std::uint64_t bytesReceived = 0;            ///< body bytes, before decompression
  HTTPStatusCode statusCode;                  ///< of the answer; 0 when none came
  std::string contentType;                    ///< of the answer, as its header says it; empty when it says nothing
  int attempt = 1;                            ///< 1 for the first attempt, 2 for its first retry, ...
  int redirects = 0;                          ///< redirects followed
  bool reusedConnection = false;              ///< the connection had served an earlier attempt
  std::string protocol;                       ///< `HTTP/1.1`, `HTTP/2`, or empty when no answer came
};

}  // namespace ZAK
