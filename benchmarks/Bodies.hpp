#pragma once

#include <zvapikit/core/CollectionDto.hpp>
#include <zvapikit/model/AnalyticsEventDto.hpp>
#include <zvapikit/model/FofPostDto.hpp>
#include <zvapikit/model/LegacyPostDto.hpp>
#include <zvapikit/model/PostDto.hpp>
#include <zvapikit/model/ProfileDto.hpp>
#include <zvapikit/model/RelationshipsPersonDto.hpp>

#include <vector>

/// Bodies as the back-end and the host make them: texts of many lengths, some with escapes or outside ASCII, some
/// fields missing here and there. Always the same ones.
namespace Bench {

/// Some with a caption, reactions, comments or screenshots, some without; so are those below.
std::vector<ZAK::PostDto> posts(int count);
std::vector<ZAK::LegacyPostDto> feed(int count);
ZAK::CollectionDto<ZAK::FofPostDto> fofPosts(int count);
ZAK::CollectionDto<ZAK::RelationshipsPersonDto> friends(int count);
/// With two devices and five stored selfies.
ZAK::ProfileDto profile();
/// A name, an instant and about ten properties each.
std::vector<ZAK::AnalyticsEventDto> events(int count);

}  // namespace Bench
