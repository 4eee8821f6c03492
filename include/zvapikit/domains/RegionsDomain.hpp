#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/core/MobileApiDomain.hpp>
#include <zvapikit/model/RegionDto.hpp>

#include <boost/asio/awaitable.hpp>

#include <optional>
#include <string>
#include <vector>

namespace ZAK {

/// The regions of the world, each with its own moments. Thread safety, executors, lifetimes, cancellation and errors
/// are those of `MobileApiDomain` and `Client`.
class ZVAPIKIT_API RegionsDomain : public MobileApiDomain {
 public:
  using MobileApiDomain::MobileApiDomain;

  /// All regions, their names in `language` (a code such as `fr`) or in the server's choice. Safe to repeat, and sent
  /// again by the kit when the connection fails.
  boost::asio::awaitable<std::vector<RegionDto>> fetch(std::optional<std::string> language = {});
};

}  // namespace ZAK
