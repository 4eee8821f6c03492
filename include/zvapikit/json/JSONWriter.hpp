#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/json/JSONType.hpp>

#include <string_view>

namespace ZAK {

namespace detail {
class JSONOutput;
}

/// Where an `encodeJSON` hook writes its value: either one `value`, or `beginObject`, any number of `field`s, and
/// `endObject`. The date strategy of the encoder holds for every write.
///
/// Valid only during the hook's call, and for its thread alone.
class ZVAPIKIT_API JSONWriter {
 public:
  /// Made by the encoder alone.
  explicit JSONWriter(detail::JSONOutput& output) noexcept : output_(&output) {}

  /// Writes the whole value.
  /// \throws EncodingError when it has no JSON form.
  template <class T>
  void value(const T& value) {
    write(jsonType<T>(), &value);
  }

  /// Opens an object.
  void beginObject();
  /// Writes a key and its value: nothing for an empty `std::optional`, null for an empty `NullEncodable`.
  /// \throws EncodingError when the value has no JSON form.
  template <class T>
  void field(std::string_view key, const T& value) {
    write(key, jsonType<T>(), &value);
  }
  /// Closes the object.
  void endObject();

 private:
  void write(const JSONType& type, const void* value);
  void write(std::string_view key, const JSONType& type, const void* value);

  detail::JSONOutput* output_;
};

}  // namespace ZAK
