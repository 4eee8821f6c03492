#pragma once

#include "Call.hpp"

#include <vector>

namespace ZAK {

/// The caller's archive. On first sight that of a user of the options gets its posts, which depend on nothing but the
/// user's id and the day on which the emulator started.
[[nodiscard]] Archive& archiveOf(Call& call);

/// The caller's posts of earlier moments than the current one, newest first.
[[nodiscard]] std::vector<const Post*> pastPosts(Call& call);

/// Whether one post comes before another where the newest comes first.
[[nodiscard]] bool isNewer(const Post* a, const Post* b);

}  // namespace ZAK
