#include "core/Endpoint.hpp"

#include <zvapikit/domains/VonageDomain.hpp>

namespace ZAK {

using boost::asio::awaitable;

awaitable<VonageRequestCodeResponseDto> VonageDomain::requestCode(std::string phoneNumber) {
  VonageRequestCodeDto body{{}, std::move(phoneNumber)};
  // Without the client nothing will be sent.
  if (const auto client = weakClient().lock(); client && !client->deviceInfo().deviceId.empty()) {
    body.deviceId = client->deviceInfo().deviceId;
  }
  return authFire<VonageRequestCodeResponseDto>(weakClient(), Endpoint::post("/api/vonage/request-code").json(body));
}

awaitable<VonageCheckCodeResponseDto> VonageDomain::checkCode(std::string vonageRequestId, std::string code) {
  const VonageCheckCodeDto body{std::move(vonageRequestId), std::move(code)};
  return authFire<VonageCheckCodeResponseDto>(weakClient(), Endpoint::post("/api/vonage/check-code").json(body));
}

}  // namespace ZAK
