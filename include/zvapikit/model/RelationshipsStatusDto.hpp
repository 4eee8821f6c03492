#pragma once

#include <zvapikit/json/RawValue.hpp>

#include <array>
#include <string_view>

namespace ZAK {

/// How the reader of a record is related to a person. An unknown text fails to decode.
enum class RelationshipsStatusDto {
  pending,   ///< the person has asked the reader to be a friend
  accepted,  ///< the two are friends
  rejected,  ///< the request was turned down
  canceled,  ///< the request was taken back
  sent       ///< the reader has asked the person to be a friend
};

template <>
struct RawValues<RelationshipsStatusDto> {
  static constexpr std::string_view name = "RelationshipsStatusDto";
  static constexpr std::array cases = {
      RawCase{RelationshipsStatusDto::pending, "pending"}, RawCase{RelationshipsStatusDto::accepted, "accepted"},
      RawCase{RelationshipsStatusDto::rejected, "rejected"}, RawCase{RelationshipsStatusDto::canceled, "canceled"},
      RawCase{RelationshipsStatusDto::sent, "sent"}};
};

}  // namespace ZAK
