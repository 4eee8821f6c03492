#include "Snippets.hpp"

#include <zvapikit/core/Pager.hpp>
#include <zvapikit/domains/FeedsDomain.hpp>
#include <zvapikit/domains/PersonDomain.hpp>
#include <zvapikit/domains/RelationshipsDomain.hpp>

namespace {

boost::asio::awaitable<std::size_t> countFriends(ZAK::RelationshipsDomain relationships) {
  std::size_t count = 0;
  auto friends = ZAK::pages(relationships, &ZAK::RelationshipsDomain::fetchFriends);
  while (auto page = co_await friends.next()) count += page->size();
  co_return count;
}

boost::asio::awaitable<bool> knowsInCommon(ZAK::PersonDomain persons, ZAK::UserId other, std::string name) {
  auto common = ZAK::pages(persons, &ZAK::PersonDomain::fetchMutualFriends, other);
  common.setMaxPages(10);
  while (auto person = co_await common.nextElement()) {
    if (person->username == name) co_return true;
  }
  co_return false;
}

// Where to go on, to be kept between two runs of a host: `start` of the next one.
boost::asio::awaitable<std::optional<ZAK::CursorDto>> readSome(ZAK::FeedsDomain feeds,
                                                               std::optional<ZAK::CursorDto> start) {
  const auto fetch = [feeds](std::optional<ZAK::CursorDto> cursor) mutable { return feeds.fetchFof(cursor); };
  ZAK::Pager<ZAK::FofPostDto> posts(fetch, 3, start);
  while (auto page = co_await posts.next()) {
  }
  co_return posts.nextCursor();
}

boost::asio::awaitable<void> read(std::shared_ptr<ZAK::MobileApiClient> client) {
  const std::size_t count = co_await countFriends(ZAK::RelationshipsDomain(client));
  require(count == 2, "Alice has two friends");
  const bool knows = co_await knowsInCommon(ZAK::PersonDomain(client), ZAK::UserId("bob"), "carol");
  require(knows, "Carol is a friend of both");
  const auto rest = co_await readSome(ZAK::FeedsDomain(client), std::nullopt);
  require(rest.has_value(), "nothing was read");
}

}  // namespace

void paging() {
  ZAK::EmulatorThread backend({.pageSize = 1});
  boost::asio::io_context io;
  const auto alice = std::make_shared<Alice>();
  const auto client = ZAK::MobileApiClient::create(contextFor(backend, io, alice));
  run(io, read(client));
}
