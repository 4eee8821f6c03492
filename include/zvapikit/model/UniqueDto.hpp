#pragma once

#include <zvapikit/json/JSONType.hpp>

#include <array>

namespace ZAK {

/// An answer that wraps one value.
template <class Payload>
struct UniqueDto {
  Payload data;  ///< the value itself

  bool operator==(const UniqueDto&) const = default;
  static constexpr auto jsonFields() { return std::array{JSONField::of<&UniqueDto::data>("data")}; }
};

}  // namespace ZAK
