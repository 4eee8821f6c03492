#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/core/CollectionDto.hpp>
#include <zvapikit/core/MobileApiDomain.hpp>
#include <zvapikit/model/BlockedUserDto.hpp>
#include <zvapikit/model/Identifiers.hpp>

#include <boost/asio/awaitable.hpp>

#include <optional>

namespace ZAK {

/// The users whom the user has blocked. Every operation is safe to repeat; all but `blockUser` are sent again by the
/// kit when the connection fails. Thread safety, executors, lifetimes, cancellation and errors are those of
/// `MobileApiDomain` and `Client`.
class ZVAPIKIT_API ModerationBlockDomain : public MobileApiDomain {
 public:
  using MobileApiDomain::MobileApiDomain;

  /// A page of the blocked users; the first without a cursor. See `pages` for reading them all.
  boost::asio::awaitable<CollectionDto<BlockedUserDto>> fetchBlockedUsers(std::optional<CursorDto> cursor = {});
  /// Blocks a user: from now on neither finds the other.
  boost::asio::awaitable<void> blockUser(UserId id);
  /// Lets a blocked user find and be found again.
  boost::asio::awaitable<void> unblockUser(UserId id);
};

}  // namespace ZAK
