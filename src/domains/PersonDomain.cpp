#include "core/Endpoint.hpp"

#include <zvapikit/domains/PersonDomain.hpp>

namespace ZAK {

using boost::asio::awaitable;

awaitable<PersonDto> PersonDomain::fetch(UserId userId) {
  return fire<PersonDto>(weakClient(),
                         Endpoint::get("/person/profiles/{userId}", {{"userId", std::move(userId.value)}}));
}

awaitable<PersonDto> PersonDomain::fetch(Username username) {
  return fire<PersonDto>(
      weakClient(), Endpoint::get("person/profiles/username/{username}", {{"username", std::move(username.value)}}));
}

awaitable<CollectionDto<PersonCommonFriendsSampleDto>> PersonDomain::fetchMutualFriends(
    UserId userId, std::optional<CursorDto> cursor) {
  return fire<CollectionDto<PersonCommonFriendsSampleDto>>(
      weakClient(),
      Endpoint::get("/relationships/friends/common/{otherUserId}", {{"otherUserId", std::move(userId.value)}})
          .page(cursor));
}

}  // namespace ZAK
