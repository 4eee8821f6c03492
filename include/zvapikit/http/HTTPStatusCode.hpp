#pragma once

#include <zvapikit/Export.hpp>

#include <compare>
#include <string>

namespace ZAK {

/// The status of an answer (RFC 9110); 0 means that no answer came.
class ZVAPIKIT_API HTTPStatusCode {
 public:
  constexpr HTTPStatusCode() noexcept = default;
  constexpr explicit HTTPStatusCode(int code) noexcept : code_(code) {}

  [[nodiscard]] constexpr int code() const noexcept { return code_; }
  [[nodiscard]] constexpr bool isSuccess() const noexcept { return code_ >= 200 && code_ <= 299; }
  [[nodiscard]] constexpr bool isClientError() const noexcept { return code_ >= 400 && code_ <= 499; }

  /// The code and its registered reason, for example `401 Unauthorized`; the bare number for a code without one.
  [[nodiscard]] std::string description() const;

  auto operator<=>(const HTTPStatusCode&) const noexcept = default;

 private:
  int code_ = 0;
};

}  // namespace ZAK
