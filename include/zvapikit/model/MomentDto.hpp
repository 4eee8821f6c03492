#pragma once

#include <zvapikit/json/Date.hpp>
#include <zvapikit/json/JSONType.hpp>
#include <zvapikit/model/RegionCodeDto.hpp>

#include <array>
#include <optional>
#include <string>

namespace ZAK {

/// The time of a day at which the users of a region post.
struct MomentDto {
  std::string id;                       ///< identifier of the moment
  RegionCodeDto region;                 ///< whose moment it is
  std::optional<Date> startDate;        ///< when the users are called to post
  std::optional<Date> endDate;          ///< from when on a post is late
  std::optional<std::string> timezone;  ///< of the region, an IANA name such as `Europe/Paris`

  bool operator==(const MomentDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&MomentDto::id>("id"), JSONField::of<&MomentDto::region>("region"),
                      JSONField::of<&MomentDto::startDate>("startDate"), JSONField::of<&MomentDto::endDate>("endDate"),
                      JSONField::of<&MomentDto::timezone>("timezone")};
  }
};

}  // namespace ZAK
