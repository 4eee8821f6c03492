#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/core/MobileApiDomain.hpp>
#include <zvapikit/model/AppSettingsDto.hpp>
#include <zvapikit/model/PushSettingsDto.hpp>

#include <boost/asio/awaitable.hpp>

namespace ZAK {

/// The settings of the app and of its push notifications. Every operation is safe to repeat, and is sent again by the
/// kit when the connection fails. Thread safety, executors, lifetimes, cancellation and errors are those of
/// `MobileApiDomain` and `Client`.
class ZVAPIKIT_API SettingsDomain : public MobileApiDomain {
 public:
  using MobileApiDomain::MobileApiDomain;

  /// What the server has the app do.
  boost::asio::awaitable<AppSettingsDto> fetch();
  /// Which push notifications the user receives.
  boost::asio::awaitable<PushSettingsDto> fetchPush();
  /// Replaces which push notifications the user receives.
  boost::asio::awaitable<PushSettingsDto> updatePush(PushSettingsDto settings);
};

}  // namespace ZAK
