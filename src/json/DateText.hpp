#pragma once

#include <zvapikit/json/Date.hpp>

#include <cstddef>

namespace ZAK::detail {

/// Characters of `YYYY-MM-DDThh:mm:ss.fffZ`.
inline constexpr std::size_t dateTextSize = 24;

/// Writes the text of `JavaScriptISO8601DateFormatter::string`; false when the date has none.
bool writeDateText(Date date, char* to) noexcept;

}  // namespace ZAK::detail
