#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/core/CollectionDto.hpp>
#include <zvapikit/core/MobileApiDomain.hpp>
#include <zvapikit/model/Identifiers.hpp>
#include <zvapikit/model/PersonDto.hpp>

#include <boost/asio/awaitable.hpp>

#include <optional>

namespace ZAK {

/// Other users. Every operation reads as the signed-in user, is safe to repeat, and is sent again by the kit when the
/// connection fails. Thread safety, executors, lifetimes, cancellation and errors are those of `MobileApiDomain` and
/// `Client`.
class ZVAPIKIT_API PersonDomain : public MobileApiDomain {
 public:
  using MobileApiDomain::MobileApiDomain;

  /// The profile of the user with this identifier.
  boost::asio::awaitable<PersonDto> fetch(UserId userId);
  /// The profile of the user with this name.
  boost::asio::awaitable<PersonDto> fetch(Username username);
  /// A page of the friends whom the signed-in user has in common with another; the first without a cursor. See `pages`
  /// for reading them all.
  boost::asio::awaitable<CollectionDto<PersonCommonFriendsSampleDto>> fetchMutualFriends(
      UserId userId, std::optional<CursorDto> cursor = {});
};

}  // namespace ZAK
