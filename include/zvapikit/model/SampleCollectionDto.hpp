#pragma once

#include <zvapikit/json/JSONType.hpp>

#include <array>
#include <cstdint>
#include <vector>

namespace ZAK {

/// Some elements of a list, together with the length of the whole list.
template <class Element>
struct SampleCollectionDto {
  std::vector<Element> sample;  ///< as many as the server cares to send
  std::int64_t total = 0;       ///< may exceed the sample's length

  bool operator==(const SampleCollectionDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&SampleCollectionDto::sample>("sample"),
                      JSONField::of<&SampleCollectionDto::total>("total")};
  }
};

}  // namespace ZAK
