#pragma once

#include <zvapikit/json/JSONType.hpp>
#include <zvapikit/model/MediaDto.hpp>
#include <zvapikit/model/RelationshipsStatusDto.hpp>

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace ZAK {

/// Somebody found by a search.
struct SearchPersonDto {
  std::string id;                                ///< identifier of the user
  std::string username;                          ///< unique name
  std::optional<std::string> fullname;           ///< as the user gave it
  std::optional<std::int64_t> mutualFriends;     ///< number of friends in common with the reader
  std::optional<MediaDto> profilePicture;        ///< absent when there is none
  std::optional<RelationshipsStatusDto> status;  ///< how the reader is related to this person

  bool operator==(const SearchPersonDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&SearchPersonDto::id>("id"),
                      JSONField::of<&SearchPersonDto::username>("username"),
                      JSONField::of<&SearchPersonDto::fullname>("fullname"),
                      JSONField::of<&SearchPersonDto::mutualFriends>("mutualFriends"),
                      JSONField::of<&SearchPersonDto::profilePicture>("profilePicture"),
                      JSONField::of<&SearchPersonDto::status>("status")};
  }
};

}  // namespace ZAK
