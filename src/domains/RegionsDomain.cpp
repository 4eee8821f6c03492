#include "core/Endpoint.hpp"

#include <zvapikit/domains/RegionsDomain.hpp>

namespace ZAK {

using boost::asio::awaitable;

awaitable<std::vector<RegionDto>> RegionsDomain::fetch(std::optional<std::string> language) {
  return fire<std::vector<RegionDto>>(weakClient(),
                                      Endpoint::get("/zolvi/regions").query("language", std::move(language)));
}

}  // namespace ZAK
