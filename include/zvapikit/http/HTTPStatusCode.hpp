#pragma once

#include <zvapikit/Export.hpp>

#include <compare>
#include <string>

namespace ZAK {

/// The status of an answer (RFC 9110); 0 means that no answer came.
///
/// Thread safety: as a standard container.
class ZVAPIKIT_API HTTPStatusCode {
 public:
  constexpr HTTPStatusCode() noexcept = default;
  /// The status of this number.
  constexpr explicit HTTPStatusCode(int code) noexcept : code_(code) {}

  /// The number, for example 404.
  [[nodiscard]] constexpr int code() const noexcept { return code_; }
  /// True for 200 to 299.
  [[nodiscard]] constexpr bool isSuccess() const noexcept { return code_ >= 200 && code_ <= 299; }
  /// True for 400 to 499.
  [[nodiscard]] constexpr bool isClientError() const noexcept { return code_ >= 400 && code_ <= 499; }

  /// The code and its registered reason, for example `401 Unauthorized`; the bare number for a code without one.
  [[nodiscard]] std::string description() const;

  /// Equality and order of the numbers.
  auto operator<=>(const HTTPStatusCode&) const noexcept = default;

 private:
  int code_ = 0;
};

}  // namespace ZAK
