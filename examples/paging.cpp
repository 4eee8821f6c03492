// Lists that come in pages: read to the end, one by one, some pages at a time, and what happens when a server leads the
// reader round in circles. An emulator in this process stands in for the back-end, with two elements on a page.

#include <zvapikit/core/BlockingClient.hpp>
#include <zvapikit/core/Context.hpp>
#include <zvapikit/core/FirebaseAuthentifier.hpp>
#include <zvapikit/core/Pager.hpp>
#include <zvapikit/domains/FeedsDomain.hpp>
#include <zvapikit/domains/RelationshipsDomain.hpp>
#include <zvapikit/emulator/EmulatorThread.hpp>
#include <zvapikit/keychain/InMemoryKeychain.hpp>

#include <iostream>

namespace {

using boost::asio::awaitable;

class Firebase : public ZAK::FirebaseAuthentifier {
 public:
  awaitable<std::string> idToken() override { co_return "firebase-alice"; }
  void signOut() noexcept override {}
};

// Page by page, as a list on a screen wants it.
awaitable<void> listFriends(ZAK::RelationshipsDomain relationships) {
  auto friends = ZAK::pages(relationships, &ZAK::RelationshipsDomain::fetchFriends);
  while (const auto page = co_await friends.next()) {
    std::cout << "page:";
    for (const ZAK::RelationshipsPersonDto& person : *page) std::cout << " " << person.username;
    std::cout << "\n";
  }
}

// Element by element, without a thought of pages. The next page is asked for when it is needed, so it costs nothing to
// stop early.
awaitable<void> findPost(ZAK::FeedsDomain feeds, std::string author) {
  auto posts = ZAK::pages(feeds, &ZAK::FeedsDomain::fetchFof);
  while (const auto post = co_await posts.nextElement()) {
    if (post->user.username != author) continue;
    std::cout << "found: " << post->id << "\n";
    co_return;
  }
  std::cout << author << " has not posted\n";
}

// A page now and the rest later. The place to go on from is a text, which may be stored; it is absent at the end.
awaitable<std::optional<std::string>> firstPage(ZAK::RelationshipsDomain relationships) {
  auto friends = ZAK::pages(relationships, &ZAK::RelationshipsDomain::fetchFriends);
  friends.setMaxPages(1);
  std::size_t count = 0;
  while (const auto person = co_await friends.nextElement()) ++count;
  std::cout << "at first: " << count << "\n";
  const std::optional<ZAK::CursorDto> place = friends.nextCursor();
  if (place == ZAK::CursorDto::end()) co_return std::nullopt;
  co_return place->index();
}

awaitable<void> restFrom(ZAK::RelationshipsDomain relationships, std::string place) {
  const auto fetch = [relationships](std::optional<ZAK::CursorDto> cursor) mutable {
    return relationships.fetchFriends(std::move(cursor));
  };
  ZAK::Pager<ZAK::RelationshipsPersonDto> friends(fetch, std::nullopt, ZAK::CursorDto::nextIndex(std::move(place)));
  std::size_t count = 0;
  while (const auto person = co_await friends.nextElement()) ++count;
  std::cout << "and later: " << count << "\n";
}

ZAK::EmulatorOptions manyFriends() {
  ZAK::EmulatorOptions options;
  options.pageSize = 2;
  for (const std::string name : {"erin", "frank", "grace"}) {
    options.users.push_back({.id = name, .username = name, .fullname = name, .hasPosted = true, .phoneNumber = {}});
    options.friendships.emplace_back("alice", name);
  }
  return options;
}

}  // namespace

int main() {
  ZAK::EmulatorThread backend(manyFriends());
  const auto firebase = std::make_shared<Firebase>();
  ZAK::BlockingClient tool({
      .configuration = {ZAK::Configuration::Environment::sandbox},
      .deviceInfo = ZAK::DeviceInfo("Linux", "6.1", "device-1"),
      .authentifier = firebase,
      .bundle = {.executable = "Paging", .identifier = "com.example.paging"},
      .transport = backend->transportOptions(),
      .keychain = std::make_shared<ZAK::InMemoryKeychain>(),
  });
  const ZAK::RelationshipsDomain relationships{tool.client()};
  tool.run(listFriends(relationships));
  tool.run(findPost(ZAK::FeedsDomain{tool.client()}, "dave.d"));
  if (const auto place = tool.run(firstPage(relationships))) tool.run(restFrom(relationships, *place));

  // A page that is said to follow itself: a pager tells so instead of reading it for ever.
  backend->inject({.path = "/relationships/friends/",
                   .times = ZAK::EmulatorFault::always,
                   .answer = ZAK::EmulatorResponse{200, R"({"data": [], "next": "again"})"}});
  try {
    tool.run(listFriends(relationships));
  } catch (const ZAK::RepeatedCursorError& error) {
    std::cout << "given up: " << error.what() << "\n";
  }
}
