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
  std::string id;                                ///< identifier of the user
  std::string username;                          ///< unique name
  std::optional<std::string> fullname;           ///< as the user gave it
  std::optional<std::int64_t> mutualFriends;     ///< number of friends in common with the reader
  std::optional<MediaDto> profilePicture;        ///< absent when there is none
  std::optional<std::string> hashedPhoneNumber;  ///< of a contact that was asked for, hashed by the server
  std::optional<Date> createdAt;                 ///< when the relationship began
  std::optional<Date> updatedAt;                 ///< when its status last changed
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
