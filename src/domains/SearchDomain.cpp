#include "core/Endpoint.hpp"

#include <zvapikit/domains/SearchDomain.hpp>

namespace ZAK {

using boost::asio::awaitable;

awaitable<CollectionDto<SearchPersonDto>> SearchDomain::searchPersons(std::string query, std::int64_t limit) {
  return fire<CollectionDto<SearchPersonDto>>(
      weakClient(),
      Endpoint::get("/search/profile").query("query", std::move(query)).query("limit", std::to_string(limit)));
}

}  // namespace ZAK
