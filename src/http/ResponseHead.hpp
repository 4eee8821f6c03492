#pragma once

#include <zvapikit/http/HTTPHeaders.hpp>
#include <zvapikit/http/HTTPStatusCode.hpp>

#include <cstddef>
#include <string>
#include <string_view>

namespace ZAK {

/// Collects the status and the headers of the final answer from the lines that a transfer yields: those of interim
/// answers (RFC 9110, 15.2) give way to it, and trailers are left out.
class ResponseHead {
 public:
  /// Takes one line, with or without its line end: a status line, a field, or the blank line that ends a head.
  void add(std::string_view line);

  /// True once any line has come.
  [[nodiscard]] bool started() const noexcept { return started_; }
  /// True once the blank line that ends the head of a final answer has come.
  [[nodiscard]] bool complete() const noexcept { return statusCode_.code() != 0 && !inHead_; }
  /// True when the answer claims several lengths (RFC 9112, 6.3): where it ends cannot be known.
  [[nodiscard]] bool contradictsItself() const;
  /// True when the lines are more than any server of good will sends.
  [[nodiscard]] bool tooLarge() const noexcept { return size_ > largest; }
  /// 0 until the status line of a final answer has come.
  [[nodiscard]] HTTPStatusCode statusCode() const noexcept { return statusCode_; }
  /// Fields that came several times are joined by commas (RFC 9110, 5.3).
  [[nodiscard]] HTTPHeaders takeHeaders() { return std::move(headers_); }

 private:
  static constexpr std::size_t largest = std::size_t{256} << 10;

  HTTPHeaders headers_;
  /// Name of the field that a folded line continues.
  std::string lastName_;
  HTTPStatusCode statusCode_;
  std::size_t size_ = 0;
  bool started_ = false;
  bool inHead_ = false;
};

}  // namespace ZAK
