#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/core/CollectionDto.hpp>
#include <zvapikit/core/MobileApiDomain.hpp>
#include <zvapikit/model/Identifiers.hpp>
#include <zvapikit/model/RelationshipsActionSourceDto.hpp>
#include <zvapikit/model/RelationshipsPersonDto.hpp>

#include <boost/asio/awaitable.hpp>

#include <optional>
#include <string>
#include <vector>

namespace ZAK {

/// Friends, suggestions and friend requests. Every operation is made as the signed-in user; the lists are read page by
/// page, the first without a cursor (see `pages` for reading them all). Thread safety, executors, lifetimes,
/// cancellation and errors are those of `MobileApiDomain` and `Client`; only what an operation adds to them is told
/// here.
///
/// Everything is safe to repeat: what is done already is refused by the server, and stays done. When a connection fails
/// the kit itself sends the lists, `hideSuggestion` and `removeFriend` again.
class ZVAPIKIT_API RelationshipsDomain : public MobileApiDomain {
 public:
  using MobileApiDomain::MobileApiDomain;

  /// The user's friends.
  boost::asio::awaitable<CollectionDto<RelationshipsPersonDto>> fetchFriends(std::optional<CursorDto> cursor = {});
  /// People the user may know.
  boost::asio::awaitable<CollectionDto<RelationshipsPersonDto>> fetchSuggestions(std::optional<CursorDto> cursor = {});
  /// People whom the user has asked to be a friend.
  boost::asio::awaitable<CollectionDto<RelationshipsPersonDto>> fetchFriendsRequestSent(
      std::optional<CursorDto> cursor = {});
  /// People who have asked the user to be a friend.
  boost::asio::awaitable<CollectionDto<RelationshipsPersonDto>> fetchFriendsRequestReceived(
      std::optional<CursorDto> cursor = {});

  /// Asks somebody to be a friend; `source` tells where in the app. Limited by the server:
  /// `tooManyFriendRequestsPending`, `friendHasTooManyFriendRequestsPending` and others of `ErrorDto::Key`.
  boost::asio::awaitable<RelationshipsPersonDto> sendFriendRequest(UserId id, RelationshipsActionSourceDto source);
  /// Takes a request back that the user has sent.
  boost::asio::awaitable<RelationshipsPersonDto> cancelFriendRequest(UserId id);
  /// Accepts the request that the other user has sent.
  boost::asio::awaitable<RelationshipsPersonDto> acceptFriendRequest(UserId id);
  /// Rejects the request that the other user has sent.
  boost::asio::awaitable<RelationshipsPersonDto> rejectFriendRequest(UserId id);

  /// Does not suggest this person again.
  boost::asio::awaitable<void> hideSuggestion(UserId id);
  /// Ends a friendship.
  boost::asio::awaitable<void> removeFriend(UserId id);
  /// Which phone numbers of an address book, in E.164 form, belong to users.
  boost::asio::awaitable<std::vector<RelationshipsPersonDto>> retrieveExistingContacts(
      std::vector<std::string> phoneNumbers);
};

}  // namespace ZAK
