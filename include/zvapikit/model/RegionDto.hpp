#pragma once

#include <zvapikit/json/JSONType.hpp>
#include <zvapikit/model/RegionCodeDto.hpp>

#include <array>
#include <string>

namespace ZAK {

/// A region of the world, whose users share their moments.
struct RegionDto {
  RegionCodeDto code;
  std::string name;  ///< for people

  bool operator==(const RegionDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&RegionDto::code>("code"), JSONField::of<&RegionDto::name>("name")};
  }
};

/// Body that changes the user's region.
struct RegionUpdateDto {
  RegionCodeDto region;

  bool operator==(const RegionUpdateDto&) const = default;
  static constexpr auto jsonFields() { return std::array{JSONField::of<&RegionUpdateDto::region>("region")}; }
};

}  // namespace ZAK
