#pragma once

#include <zvapikit/json/Date.hpp>
#include <zvapikit/json/JSONType.hpp>
#include <zvapikit/model/MediaDto.hpp>
#include <zvapikit/model/RelationshipsStatusDto.hpp>

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace ZAK {

/// An entry of a list of friends, requests or suggestions.
struct RelationshipsPersonDto {
  std::string id;
  std::string username;
  std::optional<std::string> fullname;
  std::optional<std::int64_t> mutualFriends;  ///< their number
  std::optional<MediaDto> profilePicture;
  std::optional<std::string> hashedPhoneNumber;
  std::optional<Date> createdAt;
  std::optional<Date> updatedAt;
  std::optional<RelationshipsStatusDto> status;  ///< how the reader is related to this person

  bool operator==(const RelationshipsPersonDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&RelationshipsPersonDto::id>("id"),
                      JSONField::of<&RelationshipsPersonDto::username>("username"),
                      JSONField::of<&RelationshipsPersonDto::fullname>("fullname"),
                      JSONField::of<&RelationshipsPersonDto::mutualFriends>("mutualFriends"),
                      JSONField::of<&RelationshipsPersonDto::profilePicture>("profilePicture"),
                      JSONField::of<&RelationshipsPersonDto::hashedPhoneNumber>("hashedPhoneNumber"),
                      JSONField::of<&RelationshipsPersonDto::createdAt>("createdAt"),
                      JSONField::of<&RelationshipsPersonDto::updatedAt>("updatedAt"),
                      JSONField::of<&RelationshipsPersonDto::status>("status")};
  }
};

}  // namespace ZAK
