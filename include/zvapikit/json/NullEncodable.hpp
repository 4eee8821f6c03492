#pragma once

#include <optional>
#include <utility>

namespace ZAK {

/// An optional value that is written as an explicit null when it is empty, where a plain `std::optional` field is left
/// out. Meant for bodies in which null clears a value.
///
/// Thread safety: as a standard container.
template <class T>
class NullEncodable {
 public:
  NullEncodable() = default;
  /// Holds this value, or null.
  NullEncodable(std::optional<T> value) : wrappedValue(std::move(value)) {}  // NOLINT: meant to convert

  std::optional<T> wrappedValue;  ///< null in JSON when it is empty

  bool operator==(const NullEncodable&) const = default;
};

}  // namespace ZAK
