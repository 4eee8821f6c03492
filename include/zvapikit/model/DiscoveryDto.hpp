#pragma once

#include <zvapikit/json/JSONType.hpp>
#include <zvapikit/model/LegacyPostDto.hpp>

#include <array>
#include <string>
#include <vector>

namespace ZAK {

/// One page of the discovery feed.
struct DiscoveryDto {
  std::vector<LegacyPostDto> posts;  ///< none behind the last page
  std::string lastIndex;             ///< opaque; asks for the next page

  bool operator==(const DiscoveryDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&DiscoveryDto::posts>("posts"),
                      JSONField::of<&DiscoveryDto::lastIndex>("lastIndex")};
  }
};

}  // namespace ZAK
