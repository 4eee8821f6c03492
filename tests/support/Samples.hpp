#pragma once

#include <nlohmann/json.hpp>

#include <set>
#include <string>
#include <string_view>

namespace ZAK::Tests {

/// A body in which every field of the named record is present, as the server would send it.
nlohmann::json sample(std::string_view record);

/// The keys of that body which may be missing.
std::set<std::string> optionalKeys(std::string_view record);

}  // namespace ZAK::Tests
