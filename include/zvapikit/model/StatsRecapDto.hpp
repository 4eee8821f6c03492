#pragma once

#include <zvapikit/json/JSONType.hpp>

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace ZAK {

/// One card of the user's statistics.
struct StatsRecapCardDto {
  std::string title;                    ///< in the language asked for
  std::optional<std::string> subtitle;  ///< in the language asked for
  std::string cardType;                 ///< how to show the card, any text

  bool operator==(const StatsRecapCardDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&StatsRecapCardDto::title>("title"),
                      JSONField::of<&StatsRecapCardDto::subtitle>("subtitle"),
                      JSONField::of<&StatsRecapCardDto::cardType>("cardType")};
  }
};

/// The user's statistics.
struct StatsRecapDto {
  std::vector<StatsRecapCardDto> cards;  ///< in the order to show them

  bool operator==(const StatsRecapDto&) const = default;
  static constexpr auto jsonFields() { return std::array{JSONField::of<&StatsRecapDto::cards>("cards")}; }
};

}  // namespace ZAK
