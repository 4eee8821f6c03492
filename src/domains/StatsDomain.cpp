#include "core/Endpoint.hpp"

#include <zvapikit/domains/StatsDomain.hpp>

namespace ZAK {

using boost::asio::awaitable;

awaitable<StatsRecapDto> StatsDomain::fetch(std::optional<std::string> language) {
  return fire<StatsRecapDto>(weakClient(), Endpoint::get("/feeds/user-stats").query("language", std::move(language)));
}

}  // namespace ZAK
