#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/core/MobileApiDomain.hpp>
#include <zvapikit/model/AnalyticsEventDto.hpp>

#include <boost/asio/awaitable.hpp>

#include <vector>

namespace ZAK {

/// Analytics. Thread safety, executors, lifetimes, cancellation and errors are those of `MobileApiDomain` and `Client`.
class ZVAPIKIT_API AnalyticsDomain : public MobileApiDomain {
 public:
  using MobileApiDomain::MobileApiDomain;

  /// Sends a batch of events in their order, each as it stands; no events are sent as none. Not safe to repeat blindly:
  /// the batch may be counted twice. The kit itself does not send it again when the connection fails.
  /// \throws EncodingError before anything is sent, when an event has no JSON form.
  boost::asio::awaitable<void> send(std::vector<AnalyticsEventDto> events);
};

}  // namespace ZAK
