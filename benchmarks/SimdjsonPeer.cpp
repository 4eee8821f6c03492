#include "SimdjsonPeer.hpp"

#include "JSONPeers.hpp"

namespace Bench {

template <class Result>
Result decodeWithSimdjson(const std::string& body) {
  static simdjson::dom::parser parser;
  // The body has spare capacity, so that nothing is copied.
  return Conversion<Simdjson>::converted<Result>(parser.parse(body.data(), body.size(), false));
}

#define INSTANTIATE(Body) template Body decodeWithSimdjson(const std::string&)
BENCH_BODIES(INSTANTIATE)

}  // namespace Bench
