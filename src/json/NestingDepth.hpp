#pragma once

#include <string_view>

namespace ZAK::detail {

/// Deepest nesting of a body that is read or printed.
inline constexpr int maximumNesting = 512;

/// The deepest nesting of brackets outside of strings, in text that need not be valid JSON.
int nestingDepth(std::string_view text) noexcept;

}  // namespace ZAK::detail
