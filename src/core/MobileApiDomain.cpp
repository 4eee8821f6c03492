#include <zvapikit/core/MobileApiClient.hpp>
#include <zvapikit/core/MobileApiDomain.hpp>
#include <zvapikit/core/ZAKError.hpp>

#include <stdexcept>

namespace ZAK {

MobileApiDomain::MobileApiDomain(const std::shared_ptr<MobileApiClient>& client) : client_(client) {
  if (!client) throw std::invalid_argument("an endpoint group needs a client");
  configuration_ = client->configuration();
  directories_ = client->directories();
}

std::shared_ptr<MobileApiClient> MobileApiDomain::client() const {
  if (auto client = client_.lock()) return client;
  throw ZAKError(ZAKError::noClientAvailable);
}

}  // namespace ZAK
