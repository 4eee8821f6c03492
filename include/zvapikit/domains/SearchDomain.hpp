#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/core/CollectionDto.hpp>
#include <zvapikit/core/MobileApiDomain.hpp>
#include <zvapikit/model/SearchPersonDto.hpp>

#include <boost/asio/awaitable.hpp>

#include <cstdint>
#include <string>

namespace ZAK {

/// The search for users. Thread safety, executors, lifetimes, cancellation and errors are those of `MobileApiDomain`
/// and `Client`.
class ZVAPIKIT_API SearchDomain : public MobileApiDomain {
 public:
  using MobileApiDomain::MobileApiDomain;

  /// The users whose names fit `query`, at most `limit` of them. Safe to repeat, and sent again by the kit when the
  /// connection fails. Cancel a search that a newer one replaces.
  boost::asio::awaitable<CollectionDto<SearchPersonDto>> searchPersons(std::string query, std::int64_t limit);
};

}  // namespace ZAK
