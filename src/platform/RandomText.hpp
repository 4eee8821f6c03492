#pragma once

#include <cstddef>
#include <random>
#include <string>

namespace ZAK {

/// So many random digits of 0-9 and a-f, four bits each, from the system's own source.
inline std::string randomText(std::size_t digits) {
  std::random_device random;
  std::string text(digits, '0');
  unsigned bits = 0;
  for (std::size_t i = 0; i < digits; ++i, bits >>= 4) {
    if (i % 8 == 0) bits = random();
    text[i] = "0123456789abcdef"[bits & 15];
  }
  return text;
}

}  // namespace ZAK
