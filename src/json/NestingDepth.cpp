#include "json/NestingDepth.hpp"

#include <algorithm>

namespace ZAK::detail {

int nestingDepth(std::string_view text) noexcept {
  int current = 0;
  int deepest = 0;
  bool inString = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (inString) {
      if (c == '\\') ++i;
      if (c == '"') inString = false;
    } else if (c == '"') {
      inString = true;
    } else if (c == '{' || c == '[') {
      deepest = std::max(deepest, ++current);
    } else if (c == '}' || c == ']') {
      --current;
    }
  }
  return deepest;
}

}  // namespace ZAK::detail
