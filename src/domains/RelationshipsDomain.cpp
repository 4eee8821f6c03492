#include "core/Endpoint.hpp"
#include "model/RequestBodies.hpp"

#include <zvapikit/domains/RelationshipsDomain.hpp>

namespace ZAK {

using boost::asio::awaitable;

namespace {

using People = CollectionDto<RelationshipsPersonDto>;

// The templates of the lists and of the first request are expanded without their variable, which leaves the collection
// with a slash at its end: that is where the server has them.
constexpr const char* friendsPath = "/relationships/friends/{id}";
constexpr const char* suggestionsPath = "/relationships/suggestions/{id}";
constexpr const char* friendRequestsPath = "/relationships/friend-requests/{id}";

awaitable<People> fetchPage(std::weak_ptr<MobileApiClient> client, const char* path,
                            const std::optional<CursorDto>& cursor) {
  return fire<People>(std::move(client), Endpoint::get(path).page(cursor));
}

awaitable<RelationshipsPersonDto> answerRequest(std::weak_ptr<MobileApiClient> client, UserId id,
                                                RelationshipsStatusDto status) {
  return fire<RelationshipsPersonDto>(
      std::move(client),
      Endpoint::patch(friendRequestsPath, {{"id", std::move(id.value)}}).json(FriendRequestStatusBody{status}));
}

}  // namespace

awaitable<People> RelationshipsDomain::fetchFriends(std::optional<CursorDto> cursor) {
  return fetchPage(weakClient(), friendsPath, cursor);
}

awaitable<People> RelationshipsDomain::fetchSuggestions(std::optional<CursorDto> cursor) {
  return fetchPage(weakClient(), suggestionsPath, cursor);
}

awaitable<People> RelationshipsDomain::fetchFriendsRequestSent(std::optional<CursorDto> cursor) {
  return fetchPage(weakClient(), "/relationships/friend-requests/sent", cursor);
}

awaitable<People> RelationshipsDomain::fetchFriendsRequestReceived(std::optional<CursorDto> cursor) {
  return fetchPage(weakClient(), "/relationships/friend-requests/received", cursor);
}

awaitable<RelationshipsPersonDto> RelationshipsDomain::sendFriendRequest(UserId id,
                                                                         RelationshipsActionSourceDto source) {
  const FriendRequestBody body{std::move(id.value), source};
  return fire<RelationshipsPersonDto>(weakClient(), Endpoint::post(friendRequestsPath).json(body));
}

awaitable<RelationshipsPersonDto> RelationshipsDomain::cancelFriendRequest(UserId id) {
  return answerRequest(weakClient(), std::move(id), RelationshipsStatusDto::canceled);
}

awaitable<RelationshipsPersonDto> RelationshipsDomain::acceptFriendRequest(UserId id) {
  return answerRequest(weakClient(), std::move(id), RelationshipsStatusDto::accepted);
}

awaitable<RelationshipsPersonDto> RelationshipsDomain::rejectFriendRequest(UserId id) {
  return answerRequest(weakClient(), std::move(id), RelationshipsStatusDto::rejected);
}

awaitable<void> RelationshipsDomain::hideSuggestion(UserId id) {
  return fire<void>(weakClient(), Endpoint::delete_(suggestionsPath, {{"id", std::move(id.value)}}));
}

awaitable<void> RelationshipsDomain::removeFriend(UserId id) {
  return fire<void>(weakClient(), Endpoint::delete_(friendsPath, {{"id", std::move(id.value)}}));
}

awaitable<std::vector<RelationshipsPersonDto>> RelationshipsDomain::retrieveExistingContacts(
    std::vector<std::string> phoneNumbers) {
  const ContactsBody body{std::move(phoneNumbers)};
  return fire<std::vector<RelationshipsPersonDto>>(weakClient(), Endpoint::post("/relationships/contacts").json(body));
}

}  // namespace ZAK
