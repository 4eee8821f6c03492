#include "core/Endpoint.hpp"
#include "model/RequestBodies.hpp"

#include <zvapikit/domains/ModerationBlockDomain.hpp>

namespace ZAK {

using boost::asio::awaitable;

awaitable<CollectionDto<BlockedUserDto>> ModerationBlockDomain::fetchBlockedUsers(std::optional<CursorDto> cursor) {
  return fire<CollectionDto<BlockedUserDto>>(weakClient(), Endpoint::get("/moderation/block-users").page(cursor));
}

awaitable<void> ModerationBlockDomain::blockUser(UserId id) {
  const BlockUserBody body{std::move(id.value)};
  return fire<void>(weakClient(), Endpoint::post("/moderation/block-users").json(body));
}

awaitable<void> ModerationBlockDomain::unblockUser(UserId id) {
  return fire<void>(weakClient(), Endpoint::delete_("moderation/block-users/{id}", {{"id", std::move(id.value)}}));
}

}  // namespace ZAK
