#pragma once

#include <zvapikit/json/RawValue.hpp>

#include <array>
#include <string_view>

namespace ZAK {

/// How the reader of a record is related to a person. An unknown text fails to decode.
enum class RelationshipsStatusDto { pending, accepted, rejected, canceled, sent };

template <>
struct RawValues<RelationshipsStatusDto> {
  static constexpr std::string_view name = "RelationshipsStatusDto";
  static constexpr std::array cases = {
      RawCase{RelationshipsStatusDto::pending, "pending"}, RawCase{RelationshipsStatusDto::accepted, "accepted"},
      RawCase{RelationshipsStatusDto::rejected, "rejected"}, RawCase{RelationshipsStatusDto::canceled, "canceled"},
      RawCase{RelationshipsStatusDto::sent, "sent"}};
};

}  // namespace ZAK
