#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/core/CollectionDto.hpp>

#include <boost/asio/awaitable.hpp>

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <unordered_set>
#include <utility>
#include <vector>

namespace ZAK {

/// A list's next page was said to be one that has been read before: reading on would never end.
///
/// Thread safety: as a standard container.
struct ZVAPIKIT_API RepeatedCursorError : std::runtime_error {
  /// The list leads back to this page.
  explicit RepeatedCursorError(std::string index_)
      : std::runtime_error("the list leads back to its page \"" + index_ + "\""), index(std::move(index_)) {}

  std::string index;  ///< of the page that was read before
};

/// Reads a paged list to its end, made by `pages`:
///
///     auto friends = ZAK::pages(relationships, &ZAK::RelationshipsDomain::fetchFriends);
///     while (auto page = co_await friends.next()) show(*page);                    // page by page, or
///     while (auto person = co_await friends.nextElement()) show(*person);         // one by one
///
/// A call that fails or is cancelled leaves the pager where it was, so that the same call may be made again. Errors and
/// cancellation are those of the operation that reads a page.
///
/// Copies read on from one common place.
///
/// Thread safety: as a standard container, its copies included; one call at a time. A call in progress does not need
/// the pager any more.
template <class Element>
class Pager {
 public:
  /// Reads one page, the first without a cursor.
  using Fetch = std::function<boost::asio::awaitable<CollectionDto<Element>>(std::optional<CursorDto>)>;

  /// Reads pages by `fetch`, at most `maxPages` of them; `nextCursor` then tells where to go on. `start` is where to
  /// begin.
  explicit Pager(Fetch fetch, std::optional<std::size_t> maxPages = {}, std::optional<CursorDto> start = {})
      : state_(std::make_shared<State>()) {
    state_->fetch = std::move(fetch);
    state_->pagesLeft = maxPages;
    state_->cursor = std::move(start);
  }

  /// The elements of the next page that are left, and none for an empty page; absent behind the last page or at the
  /// limit.
  /// \throws RepeatedCursorError instead of reading a page again; this page's elements have been handed out before.
  boost::asio::awaitable<std::optional<std::vector<Element>>> next() { return nextPage(state_); }
  /// The next element; absent behind the last one or at the limit.
  /// \throws RepeatedCursorError as `next`.
  boost::asio::awaitable<std::optional<Element>> nextElement() { return nextOne(state_); }

  /// Where the next page to be read is: absent before the first, the end behind the last. To go on from there, now or
  /// in another run, make a pager that starts with it.
  [[nodiscard]] const std::optional<CursorDto>& nextCursor() const noexcept { return state_->cursor; }

  /// Reads at most so many further pages.
  void setMaxPages(std::size_t maxPages) noexcept { state_->pagesLeft = maxPages; }

 private:
  struct State {
    Fetch fetch;
    std::optional<std::size_t> pagesLeft;
    std::optional<CursorDto> cursor;
    std::unordered_set<std::string> indexes{};  ///< of the pages read
    std::vector<Element> elements{};            ///< of the page read last
    std::size_t taken = 0;                      ///< how many of them have been handed out
  };

  static boost::asio::awaitable<std::optional<std::vector<Element>>> nextPage(std::shared_ptr<State> state) {
    if (state->taken == state->elements.size()) {
      // Not in the condition itself: there g++ 12 destroys `state` too early.
      const bool found = co_await read(state);
      if (!found) co_return std::nullopt;
    }
    auto& elements = state->elements;
    std::vector<Element> left(std::make_move_iterator(elements.begin() + static_cast<std::ptrdiff_t>(state->taken)),
                              std::make_move_iterator(elements.end()));
    elements.clear();
    state->taken = 0;
    co_return left;
  }

  static boost::asio::awaitable<std::optional<Element>> nextOne(std::shared_ptr<State> state) {
    while (state->taken == state->elements.size()) {
      const bool found = co_await read(state);
      if (!found) co_return std::nullopt;
    }
    co_return std::move(state->elements[state->taken++]);
  }

  /// Reads the next page; false when there is none.
  static boost::asio::awaitable<bool> read(std::shared_ptr<State> state) {
    if (state->cursor == CursorDto::end() || state->pagesLeft == std::size_t{0}) co_return false;
    const std::string index = state->cursor ? state->cursor->index().value_or("") : "";
    if (state->indexes.contains(index)) throw RepeatedCursorError(index);
    CollectionDto<Element> page = co_await state->fetch(state->cursor);
    state->indexes.insert(index);
    state->elements = std::move(page.data);
    state->taken = 0;
    // An empty index would ask for the end.
    state->cursor = page.next == "" ? CursorDto::end() : page.nextCursor();
    if (state->pagesLeft) --*state->pagesLeft;
    co_return true;
  }

  std::shared_ptr<State> state_;
};

/// A pager over a paged operation of an endpoint group; `arguments` are those before its cursor:
/// `pages(persons, &PersonDomain::fetchMutualFriends, UserId("bob"))`. The pager keeps a copy of the group, so no
/// client.
template <class Group, class Operation, class... Arguments>
auto pages(Group group, Operation operation, Arguments... arguments) {
  static_assert(std::is_invocable_v<Operation, Group&, Arguments..., std::optional<CursorDto>>,
                "the operation reads no list page by page: its last argument must be a std::optional<CursorDto>");
  using Call = std::invoke_result_t<Operation, Group&, Arguments..., std::optional<CursorDto>>;
  using Element = typename decltype(Call::value_type::data)::value_type;
  return Pager<Element>([=](std::optional<CursorDto> cursor) {
    Group target = group;
    return (target.*operation)(arguments..., std::move(cursor));
  });
}

}  // namespace ZAK
