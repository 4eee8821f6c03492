#pragma once

#include <zvapikit/http/URLQueryItem.hpp>

#include <optional>
#include <string>
#include <utility>

namespace ZAK {

/// A position in a paged list: its start, its end, or the page of an index that the server gave.
///
/// Thread safety: as a standard container.
class CursorDto {
 public:
  /// The page of an index, which `CollectionDto::next` of the page before holds.
  static CursorDto nextIndex(std::string index) { return CursorDto(Position::nextIndex, std::move(index)); }
  /// The first page.
  static CursorDto start() { return CursorDto(Position::start, {}); }
  /// Behind the last page.
  static CursorDto end() { return CursorDto(Position::end, {}); }

  /// The index; absent at the start, empty at the end.
  [[nodiscard]] std::optional<std::string> index() const {
    if (position_ == Position::start) return std::nullopt;
    return index_;
  }
  /// The query item that asks for this page: `page`, `page=` and `page=INDEX`.
  [[nodiscard]] URLQueryItem toQueryItem() const { return URLQueryItem("page", index()); }

  /// The end is not equal to an index that happens to be empty.
  bool operator==(const CursorDto&) const = default;

 private:
  enum class Position { nextIndex, start, end };
  CursorDto(Position position, std::string index) : position_(position), index_(std::move(index)) {}

  Position position_;
  std::string index_;
};

}  // namespace ZAK
