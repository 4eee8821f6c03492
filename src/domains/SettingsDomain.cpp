#include "core/Endpoint.hpp"

#include <zvapikit/domains/SettingsDomain.hpp>

namespace ZAK {

using boost::asio::awaitable;

awaitable<AppSettingsDto> SettingsDomain::fetch() {
  return fire<AppSettingsDto>(weakClient(), Endpoint::get("/settings"));
}

awaitable<PushSettingsDto> SettingsDomain::fetchPush() {
  return fire<PushSettingsDto>(weakClient(), Endpoint::get("settings/notification-push"));
}

awaitable<PushSettingsDto> SettingsDomain::updatePush(PushSettingsDto settings) {
  return fire<PushSettingsDto>(weakClient(), Endpoint::put("settings/notification-push").json(settings));
}

}  // namespace ZAK
