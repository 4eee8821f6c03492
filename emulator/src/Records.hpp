#pragma once

#include "World.hpp"

#include <nlohmann/json.hpp>

#include <string>

/// The records as the mobile API writes them. `reader` is the user who gets to read them.
namespace ZAK::EmulatorRecords {

[[nodiscard]] nlohmann::json media(const Picture& picture);
[[nodiscard]] nlohmann::json person(const World& world, const std::string& userId, const std::string& reader);
[[nodiscard]] nlohmann::json comment(const World& world, const Comment& comment, const std::string& reader);
[[nodiscard]] nlohmann::json quiblet(const World& world, const Quiblet& quiblet, const std::string& reader);
[[nodiscard]] nlohmann::json post(const World& world, const Post& post, const std::string& reader);

}  // namespace ZAK::EmulatorRecords
