#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/json/JSONDateStrategy.hpp>
#include <zvapikit/json/JSONErrors.hpp>
#include <zvapikit/json/JSONType.hpp>

#include <string>

namespace ZAK {

/// Turns values into JSON (RFC 8259), without blanks, the fields of a record in the order of its table. Empty optional
/// fields are left out. Numbers are the shortest text that reads back equal; text outside ASCII stays UTF-8.
///
/// Thread safety: immutable; use one encoder from any number of threads.
class ZVAPIKIT_API JSONEncoder {
 public:
  /// An encoder that writes dates by this strategy.
  explicit JSONEncoder(JSONDateStrategy dates = JSONDateStrategy::javaScriptISO8601) noexcept : dates_(dates) {}

  /// The value as JSON.
  /// \throws EncodingError when a part of the value has no JSON form.
  template <class T>
  [[nodiscard]] std::string encode(const T& value) const {
    return encode(jsonType<T>(), &value);
  }

  /// The same for an object of the described type.
  /// \throws EncodingError as above.
  [[nodiscard]] std::string encode(const JSONType& type, const void* value) const;

 private:
  JSONDateStrategy dates_;
};

}  // namespace ZAK
