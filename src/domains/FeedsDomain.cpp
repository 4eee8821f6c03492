#include "core/Endpoint.hpp"

#include <zvapikit/domains/FeedsDomain.hpp>

namespace ZAK {

using boost::asio::awaitable;

awaitable<std::vector<LegacyPostDto>> FeedsDomain::fetchFriends() {
  return fire<std::vector<LegacyPostDto>>(weakClient(), Endpoint::get("/feeds/friends"));
}

awaitable<DiscoveryDto> FeedsDomain::fetchDiscovery(std::optional<std::string> lastIndex) {
  return fire<DiscoveryDto>(weakClient(), Endpoint::get("/feeds/discovery").query("lastIndex", std::move(lastIndex)));
}

awaitable<CollectionDto<FofPostDto>> FeedsDomain::fetchFof(std::optional<CursorDto> cursor) {
  return fire<CollectionDto<FofPostDto>>(weakClient(), Endpoint::get("/feeds/friends-of-friends").page(cursor));
}

}  // namespace ZAK
