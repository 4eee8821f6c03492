#pragma once

#include <zvapikit/model/PostDto.hpp>

#include <vector>

namespace Bench {

/// So many posts as friends post them: some with a caption, reactions, comments or screenshots, some without. Always
/// the same ones.
std::vector<ZAK::PostDto> posts(int count);

}  // namespace Bench
