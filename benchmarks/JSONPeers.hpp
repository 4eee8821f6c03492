#pragma once

#include "Bodies.hpp"

#include <string>
#include <vector>

/// What a host would write by hand on top of each library. Each is compiled by itself: how much a compiler inlines
/// depends on what else is in the file.
namespace Bench {

/// `body` has `JSONBody::wantedPadding` of spare capacity.
template <class Result>
Result decodeWithSimdjson(const std::string& body);
template <class Result>
Result decodeWithBoost(const std::string& body);
template <class Result>
Result decodeWithRapidJSON(const std::string& body);
template <class Result>
Result decodeWithNlohmann(const std::string& body);

template <class Source>
std::string encodeWithBoost(const Source& source);
template <class Source>
std::string encodeWithRapidJSON(const Source& source);
template <class Source>
std::string encodeWithNlohmann(const Source& source);

/// The kinds of bodies that are measured.
#define BENCH_BODIES(instantiate)                               \
  instantiate(ZAK::PostDto);                                    \
  instantiate(std::vector<ZAK::PostDto>);                       \
  instantiate(std::vector<ZAK::LegacyPostDto>);                 \
  instantiate(ZAK::CollectionDto<ZAK::FofPostDto>);             \
  instantiate(ZAK::CollectionDto<ZAK::RelationshipsPersonDto>); \
  instantiate(ZAK::ProfileDto);

}  // namespace Bench
