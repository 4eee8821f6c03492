#include "core/Endpoint.hpp"
#include "model/RequestBodies.hpp"

#include <zvapikit/domains/TermsDomain.hpp>

namespace ZAK {

using boost::asio::awaitable;

awaitable<CollectionDto<TermDto>> TermsDomain::fetch() {
  return fire<CollectionDto<TermDto>>(weakClient(), Endpoint::get("/terms"));
}

awaitable<TermDto> TermsDomain::update(TermCodeDto code, TermStatusDto with) {
  return fire<TermDto>(
      weakClient(), Endpoint::put("/terms/{code}", {{"code", std::string(rawValue(code))}}).json(TermStatusBody{with}));
}

}  // namespace ZAK
