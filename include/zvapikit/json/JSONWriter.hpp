#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/json/JSONType.hpp>

#include <string_view>

namespace ZAK {

namespace detail {
class JSONOutput;
}

/// Where an `encodeJSON` hook writes its value: either one `value`, or `beginObject`, any number of `field`s, and
/// `endObject`. The date strategy of the encoder holds for every write. All writes throw `EncodingError`.
///
/// Valid only during the hook's call.
class ZVAPIKIT_API JSONWriter {
 public:
  explicit JSONWriter(detail::JSONOutput& output) noexcept : output_(&output) {}

  template <class T>
  void value(const T& value) {
    write(jsonType<T>(), &value);
  }

  void beginObject();
  /// Writes nothing for an empty `std::optional`, and null for an empty `NullEncodable`.
  template <class T>
  void field(std::string_view key, const T& value) {
    write(key, jsonType<T>(), &value);
  }
  void endObject();

 private:
  void write(const JSONType& type, const void* value);
  void write(std::string_view key, const JSONType& type, const void* value);

  detail::JSONOutput* output_;
};

}  // namespace ZAK
