#pragma once

#include <zvapikit/core/CursorDto.hpp>
#include <zvapikit/json/JSONType.hpp>

#include <array>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace ZAK {

/// One page of a list.
template <class Element>
struct CollectionDto {
  CollectionDto() = default;
  /// All fields, in their order.
  CollectionDto(std::vector<Element> data_, std::optional<std::string> next_)
      : data(std::move(data_)), next(std::move(next_)) {}

  std::vector<Element> data;        ///< in the server's order; may be empty
  std::optional<std::string> next;  ///< index of the next page; absent on the last

  /// Where the next page is; the end when there is none.
  [[nodiscard]] CursorDto nextCursor() const { return next ? CursorDto::nextIndex(*next) : CursorDto::end(); }

  bool operator==(const CollectionDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&CollectionDto::data>("data"), JSONField::of<&CollectionDto::next>("next")};
  }
};

}  // namespace ZAK
