#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/json/JSONErrors.hpp>
#include <zvapikit/json/JSONType.hpp>

#include <optional>
#include <string_view>

namespace ZAK {

namespace detail {
struct JSONNode;
}

/// One value of a body that is being decoded, as a `decodeJSON` hook sees it. The date strategy of the decoder holds
/// for every read.
///
/// Valid only during the hook's call, and for its thread alone. A body that does not decode is read a second time to
/// tell why, so a hook may be called twice for one value.
class ZVAPIKIT_API JSONValue {
 public:
  /// Made by the decoder alone.
  explicit JSONValue(const detail::JSONNode& node) noexcept : node_(&node) {}

  /// The value itself.
  /// \throws DecodingError with the path from the top of the body, as every read.
  template <class T>
  [[nodiscard]] T as() const {
    T result{};
    read(jsonType<T>(), &result);
    return result;
  }

  /// The value under `key` of this object.
  /// \throws DecodingError also when this is no object.
  template <class T>
  [[nodiscard]] T get(std::string_view key) const {
    T result{};
    read(key, jsonType<T>(), &result);
    return result;
  }

  /// The same, absent when the key is missing or its value is null.
  /// \throws DecodingError as `get`.
  template <class T>
  [[nodiscard]] std::optional<T> getIfPresent(std::string_view key) const {
    return get<std::optional<T>>(key);
  }

  /// The value itself, by the type's field table even though it has a `decodeJSON` hook.
  /// \throws DecodingError as `as`.
  template <JSONRecord T>
  [[nodiscard]] T fields() const {
    T result{};
    readFields(jsonType<T>(), &result);
    return result;
  }

  /// The instant to count from, taken from the decoder's source of time.
  [[nodiscard]] Date now() const;

  /// Refuses this value, for any reason but `keyNotFound`.
  /// \throws DecodingError with the path of this value, always.
  [[noreturn]] void fail(std::string debugDescription,
                         DecodingError::Kind kind = DecodingError::Kind::dataCorrupted) const;

 private:
  void read(const JSONType& type, void* result) const;
  void read(std::string_view key, const JSONType& type, void* result) const;
  void readFields(const JSONType& type, void* result) const;

  const detail::JSONNode* node_;
};

}  // namespace ZAK
