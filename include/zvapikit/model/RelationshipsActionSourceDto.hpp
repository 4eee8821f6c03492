#pragma once

#include <zvapikit/json/RawValue.hpp>

#include <array>
#include <string_view>

namespace ZAK {

/// Where in the app a friend request was started. An unknown text fails to decode.
enum class RelationshipsActionSourceDto {
  username,  ///< the search for a name
  contact,   ///< the address book
  profile,   ///< the person's profile
  comment,   ///< a comment of the person's
  fof        ///< the feed of friends' friends
};

template <>
struct RawValues<RelationshipsActionSourceDto> {
  static constexpr std::string_view name = "RelationshipsActionSourceDto";
  static constexpr std::array cases = {RawCase{RelationshipsActionSourceDto::username, "username"},
                                       RawCase{RelationshipsActionSourceDto::contact, "contact"},
                                       RawCase{RelationshipsActionSourceDto::profile, "profile"},
                                       RawCase{RelationshipsActionSourceDto::comment, "comment"},
                                       RawCase{RelationshipsActionSourceDto::fof, "friendsOfFriendsFeed"}};
};

}  // namespace ZAK
