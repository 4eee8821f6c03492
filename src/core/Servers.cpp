#include <zvapikit/core/Servers.hpp>

namespace ZAK {

const Servers::CompiledIn& Servers::compiledIn() noexcept {
  static constexpr CompiledIn servers{ZVAPIKIT_MOBILE_PRODUCTION, ZVAPIKIT_MOBILE_SANDBOX, ZVAPIKIT_AUTH_PRODUCTION,
                                      ZVAPIKIT_AUTH_SANDBOX};
  return servers;
}

}  // namespace ZAK
