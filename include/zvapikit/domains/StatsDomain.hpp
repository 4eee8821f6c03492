#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/core/MobileApiDomain.hpp>
#include <zvapikit/model/StatsRecapDto.hpp>

#include <boost/asio/awaitable.hpp>

#include <optional>
#include <string>

namespace ZAK {

/// The user's statistics. Thread safety, executors, lifetimes, cancellation and errors are those of `MobileApiDomain`
/// and `Client`.
class ZVAPIKIT_API StatsDomain : public MobileApiDomain {
 public:
  using MobileApiDomain::MobileApiDomain;

  /// The recap of the user's activity, its texts in `language` (a code such as `fr`) or in the server's choice. Safe to
  /// repeat, and sent again by the kit when the connection fails.
  boost::asio::awaitable<StatsRecapDto> fetch(std::optional<std::string> language = {});
};

}  // namespace ZAK
