#pragma once

#include <nlohmann/json.hpp>

#include <string_view>

namespace ZAK::test {

/// A body in which every field of the named record is present, as the server would send it.
nlohmann::json sample(std::string_view record);

}  // namespace ZAK::test
