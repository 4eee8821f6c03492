#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/json/Date.hpp>
#include <zvapikit/json/JSONDateStrategy.hpp>
#include <zvapikit/json/JSONErrors.hpp>
#include <zvapikit/json/JSONType.hpp>

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace ZAK {

/// The bytes to decode. A string with spare capacity is decoded without a copy of it. It refers to the text, which
/// must outlive it.
///
/// Thread safety: as a standard container.
class JSONBody {
 public:
  /// A string, with what it has to spare.
  JSONBody(const std::string& text) noexcept  // NOLINT: meant to convert
      : text_(text), padding_(text.capacity() - text.size()) {}
  /// A stretch of text; nothing behind it is read.
  JSONBody(std::string_view text) noexcept : text_(text) {}  // NOLINT: meant to convert
  /// A literal.
  JSONBody(const char* text) noexcept : text_(text) {}  // NOLINT: meant to convert

  /// The bytes themselves.
  [[nodiscard]] std::string_view text() const noexcept { return text_; }
  /// With so many bytes to spare behind it, a text is not copied.
  static constexpr std::size_t wantedPadding = 64;

  /// Readable bytes behind the text.
  [[nodiscard]] std::size_t padding() const noexcept { return padding_; }

 private:
  std::string_view text_;
  std::size_t padding_ = 0;
};

/// Turns JSON (RFC 8259) into values.
///
/// The whole body is checked, ignored values included; nesting deeper than 512 is refused; one leading byte-order mark
/// is skipped. Unknown keys are ignored, and of a key that stands twice the first counts. The error thrown is the
/// first in the order of the records' own fields, whatever the order of the body.
///
/// Thread safety: immutable; use one decoder from any number of threads. `now` must allow the same.
class ZVAPIKIT_API JSONDecoder {
 public:
  /// `now` is what `JSONValue::now()` yields; without one it is the machine's clock.
  explicit JSONDecoder(JSONDateStrategy dates = JSONDateStrategy::javaScriptISO8601, std::function<Date()> now = {});

  /// The value that the body holds.
  /// \throws DecodingError when the body is not the JSON of a `T`.
  template <class T>
  [[nodiscard]] T decode(JSONBody body) const {
    T value{};
    decode(body, jsonType<T>(), &value);
    return value;
  }

  /// The same into `value`, which points to a freshly made object of the described type. After a throw its content is
  /// unspecified.
  /// \throws DecodingError as above.
  void decode(JSONBody body, const JSONType& type, void* value) const;

 private:
  JSONDateStrategy dates_;
  std::function<Date()> now_;
};

}  // namespace ZAK
