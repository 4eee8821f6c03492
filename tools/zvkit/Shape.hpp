#pragma once

#include <zvapikit/json/JSONType.hpp>

#include <nlohmann/json_fwd.hpp>

#include <string>

namespace zvkit {

/// The JSON form of a type in short, for people: `{bucket: string, width: integer, caption: string?}`.
std::string shapeOf(const ZAK::JSONType& type);

/// Refuses a key that no record of the type has, at any depth: the kit ignores such keys, and a misspelt one would be
/// lost.
void checkKeys(const nlohmann::json& value, const ZAK::JSONType& type);

}  // namespace zvkit
