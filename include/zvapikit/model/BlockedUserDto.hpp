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
  std::string id;
  std::string username;
  std::optional<std::string> fullname;
  std::optional<MediaDto> profilePicture;

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
  std::string userId;
  Date blockedAt{};
  BlockedUserDetailsDto user;

  bool operator==(const BlockedUserDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&BlockedUserDto::userId>("userId"),
                      JSONField::of<&BlockedUserDto::blockedAt>("blockedAt"),
                      JSONField::of<&BlockedUserDto::user>("user")};
  }
};

}  // namespace ZAK
