#pragma once

#include <string>
#include <vector>

namespace ZAK {

struct Region {
  std::string code;
  std::string name;    ///< in English
  std::string french;  ///< the name in French
};

/// The regions a user can live in.
[[nodiscard]] inline const std::vector<Region>& regions() {
  static const std::vector<Region> all{
      {"europe-west", "Europe", "Europe"},
      {"us-central", "Americas", "Amériques"},
      {"africa", "Africa", "Afrique"},
      {"asia-west", "West Asia", "Asie occidentale"},
      {"asia-east", "East Asia", "Asie de l'Est"},
      {"oceania", "Oceania", "Océanie"},
  };
  return all;
}

}  // namespace ZAK
