#pragma once

#include <zvapikit/json/Date.hpp>
#include <zvapikit/json/JSONType.hpp>
#include <zvapikit/model/MediaDto.hpp>

#include <array>
#include <optional>
#include <string>

namespace ZAK {

/// Who is blocked.
struct BlockedUserDetailsDto {
  std::string id;                          ///< identifier of the user
  std::string username;                    ///< unique name
  std::optional<std::string> fullname;     ///< as the user gave it
  std::optional<MediaDto> profilePicture;  ///< absent when there is none

  bool operator==(const BlockedUserDetailsDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&BlockedUserDetailsDto::id>("id"),
                      JSONField::of<&BlockedUserDetailsDto::username>("username"),
                      JSONField::of<&BlockedUserDetailsDto::fullname>("fullname"),
                      JSONField::of<&BlockedUserDetailsDto::profilePicture>("profilePicture")};
  }
};

/// A user whom the signed-in user has blocked.
struct BlockedUserDto {
  std::string userId;          ///< identifier of the user who is blocked
  Date blockedAt{};            ///< when the block began
  BlockedUserDetailsDto user;  ///< as shown in a list

  bool operator==(const BlockedUserDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&BlockedUserDto::userId>("userId"),
                      JSONField::of<&BlockedUserDto::blockedAt>("blockedAt"),
                      JSONField::of<&BlockedUserDto::user>("user")};
  }
};

}  // namespace ZAK
