#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/core/CollectionDto.hpp>
#include <zvapikit/core/MobileApiDomain.hpp>
#include <zvapikit/model/DiscoveryDto.hpp>
#include <zvapikit/model/FofPostDto.hpp>
#include <zvapikit/model/LegacyPostDto.hpp>

#include <boost/asio/awaitable.hpp>

#include <optional>
#include <string>
#include <vector>

namespace ZAK {

/// The three feeds of posts. Every operation reads as the signed-in user, is safe to repeat, and is sent again by the
/// kit when the connection fails. Thread safety, executors, lifetimes, cancellation and errors are those of
/// `MobileApiDomain` and `Client`.
class ZVAPIKIT_API FeedsDomain : public MobileApiDomain {
 public:
  using MobileApiDomain::MobileApiDomain;

  /// The friends' posts of the current moment, all at once.
  boost::asio::awaitable<std::vector<LegacyPostDto>> fetchFriends();
  /// A page of public posts; the next one begins at the `lastIndex` of the page before. A page without posts is behind
  /// the last one.
  boost::asio::awaitable<DiscoveryDto> fetchDiscovery(std::optional<std::string> lastIndex = {});
  /// A page of the posts of friends' friends; the first without a cursor. See `pages` for reading them all.
  boost::asio::awaitable<CollectionDto<FofPostDto>> fetchFof(std::optional<CursorDto> cursor = {});
};

}  // namespace ZAK
