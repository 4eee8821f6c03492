#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/core/MobileApiDomain.hpp>
#include <zvapikit/model/MomentDto.hpp>
#include <zvapikit/model/RegionCodeDto.hpp>

#include <boost/asio/awaitable.hpp>

namespace ZAK {

/// The moments in which everybody posts. Thread safety, executors, lifetimes, cancellation and errors are those of
/// `MobileApiDomain` and `Client`.
class ZVAPIKIT_API MomentDomain : public MobileApiDomain {
 public:
  using MobileApiDomain::MobileApiDomain;

  /// The last moment of a region. Safe to repeat, and sent again by the kit when the connection fails.
  boost::asio::awaitable<MomentDto> fetch(RegionCodeDto region);
};

}  // namespace ZAK
