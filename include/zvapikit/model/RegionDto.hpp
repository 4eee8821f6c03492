#pragma once

#include <zvapikit/json/JSONType.hpp>
#include <zvapikit/model/RegionCodeDto.hpp>

#include <array>
#include <string>

namespace ZAK {

/// A region of the world, whose users share their moments.
struct RegionDto {
  RegionCodeDto code;  ///< names the region to the server
  std::string name;    ///< for people, in the language asked for

  bool operator==(const RegionDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&RegionDto::code>("code"), JSONField::of<&RegionDto::name>("name")};
  }
};

/// Body that changes the user's region.
struct RegionUpdateDto {
  RegionCodeDto region;  ///< the new one

  bool operator==(const RegionUpdateDto&) const = default;
  static constexpr auto jsonFields() { return std::array{JSONField::of<&RegionUpdateDto::region>("region")}; }
};

}  // namespace ZAK
