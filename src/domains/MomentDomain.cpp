#include "core/Endpoint.hpp"

#include <zvapikit/domains/MomentDomain.hpp>

namespace ZAK {

using boost::asio::awaitable;

awaitable<MomentDto> MomentDomain::fetch(RegionCodeDto region) {
  return fire<MomentDto>(weakClient(),
                         Endpoint::get("/zolvi/moments/last/{regionCode}", {{"regionCode", std::move(region.value)}}));
}

}  // namespace ZAK
