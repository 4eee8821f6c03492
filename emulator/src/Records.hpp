#pragma once

#include "World.hpp"

#include <nlohmann/json.hpp>

#include <string>

/// The records as the mobile API writes them. `reader` is the user who gets to read them.
namespace ZAK::EmulatorRecords {

/// Where the storage server has a file.
[[nodiscard]] std::string mediaUrl(const std::string& bucket, const std::string& path);
/// Where in the bucket the recap video of a year is.
[[nodiscard]] std::string videoPath(const std::string& userId, int year);
[[nodiscard]] nlohmann::json media(const Picture& picture);
/// The moment of a post.
[[nodiscard]] nlohmann::json moment(const Post& post);
[[nodiscard]] nlohmann::json person(const World& world, const std::string& userId, const std::string& reader);
[[nodiscard]] nlohmann::json comment(const World& world, const Comment& comment, const std::string& reader);
[[nodiscard]] nlohmann::json quiblet(const World& world, const Quiblet& quiblet, const std::string& reader);
[[nodiscard]] nlohmann::json post(const World& world, const Post& post, const std::string& reader);

/// A post of the friends' and the discovery feed, in their older layout.
[[nodiscard]] nlohmann::json legacyPost(const World& world, const Post& post);
/// A post of the feed of friends of friends.
[[nodiscard]] nlohmann::json friendOfFriendPost(const World& world, const Post& post, const std::string& reader);

}  // namespace ZAK::EmulatorRecords
