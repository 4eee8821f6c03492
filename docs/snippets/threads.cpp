#include "Snippets.hpp"

#include <zvapikit/core/BlockingClient.hpp>
#include <zvapikit/domains/ContentDomain.hpp>
#include <zvapikit/domains/FeedsDomain.hpp>
#include <zvapikit/domains/ProfileDomain.hpp>

#include <boost/asio/bind_cancellation_slot.hpp>
#include <boost/asio/cancellation_signal.hpp>
#include <boost/asio/experimental/awaitable_operators.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/thread_pool.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/asio/use_future.hpp>

#include <future>

namespace {

boost::asio::awaitable<void> readBoth(std::shared_ptr<ZAK::MobileApiClient> client, std::size_t* count) {
  using namespace boost::asio::experimental::awaitable_operators;
  ZAK::FeedsDomain feeds{client};
  ZAK::ProfileDomain profile{client};
  auto [posts, me] = co_await (feeds.fetchFriends() && profile.fetch());
  *count = posts.size();
  require(me.username == "alice", "somebody else");
}

boost::asio::awaitable<bool> fetchWithin(ZAK::FeedsDomain feeds, std::chrono::milliseconds limit) {
  using namespace boost::asio::experimental::awaitable_operators;
  boost::asio::steady_timer timer(co_await boost::asio::this_coro::executor, limit);
  auto result = co_await (feeds.fetchFriends() || timer.async_wait(boost::asio::use_awaitable));
  co_return result.index() == 0;  // else the time was up, and the call was cancelled
}

boost::asio::awaitable<void> onOneThread(std::shared_ptr<ZAK::MobileApiClient> client, ZAK::EmulatorThread* backend) {
  std::size_t count = 0;
  co_await readBoth(client, &count);
  require(count == 2, "Alice has two friends who posted");
  (*backend)->inject({.server = ZAK::EmulatorServer::mobile, .delay = std::chrono::seconds(30)});
  const bool inTime = co_await fetchWithin(ZAK::FeedsDomain(client), std::chrono::milliseconds(50));
  require(!inTime, "the limit was not kept");
}

boost::asio::awaitable<void> safeForms(std::shared_ptr<ZAK::MobileApiClient> client,
                                       std::optional<ZAK::CursorDto> known) {
  ZAK::ContentDomain content{client};
  ZAK::FeedsDomain feeds{client};
  const ZAK::PostCommentDto comment = co_await content.addComment("hi", ZAK::PostId("post-bob"), ZAK::UserId("bob"));

  const std::vector<std::string> comments = {comment.id};
  co_await content.deleteComments(comments, ZAK::PostId("post-bob"), ZAK::UserId("bob"));

  const ZAK::CursorDto cursor = known ? *known : ZAK::CursorDto::start();
  const auto page = co_await feeds.fetchFof(cursor);

  const auto posts = co_await feeds.fetchFriends();
  if (posts.empty()) co_return;
  require(!page.data.empty(), "nobody has posted");
}

boost::asio::awaitable<std::size_t> countPosts(ZAK::FeedsDomain feeds) {
  const std::vector<ZAK::LegacyPostDto> posts = co_await feeds.fetchFriends();  // 1: in a coroutine
  co_return posts.size();
}

void spawned(std::shared_ptr<ZAK::MobileApiClient> client, boost::asio::io_context& io) {
  ZAK::FeedsDomain feeds{client};
  std::size_t count = 0;
  client->spawn(feeds.fetchFriends(), [&count](ZAK::Outcome<std::vector<ZAK::LegacyPostDto>> posts) {  // 2: a callback
    if (posts.has_value()) count = posts.value().size();
  });
  io.run();
  io.restart();
  require(count == 2, "the callback was not told");
}

void onAPool(const ZAK::EmulatorThread& backend) {
  boost::asio::thread_pool pool(4);
  const auto alice = std::make_shared<Alice>();
  boost::asio::io_context unused;
  ZAK::Context context = contextFor(backend, unused, alice);
  context.executor = pool.get_executor();
  const auto client = ZAK::MobileApiClient::create(std::move(context));
  ZAK::FeedsDomain feeds{client};

  std::future<std::size_t> count = client->spawn(countPosts(feeds), boost::asio::use_future);  // 3: a future
  require(count.get() == 2, "the future was not told");

  backend->inject({.server = ZAK::EmulatorServer::mobile, .delay = std::chrono::seconds(30)});
  std::promise<bool> cancelled;
  const auto ended = [&cancelled](ZAK::Outcome<std::vector<ZAK::LegacyPostDto>> posts) {
    cancelled.set_value(posts.has_error());
  };
  boost::asio::cancellation_signal cancel;
  client->spawn(feeds.fetchFriends(), boost::asio::bind_cancellation_slot(cancel.slot(), ended));
  cancel.emit(boost::asio::cancellation_type::total);
  require(cancelled.get_future().get(), "the call was not cancelled");
  pool.join();
  backend->clearFaults();  // it may not have been met
}

void blocking(ZAK::Context context) {
  ZAK::BlockingClient tool(std::move(context));  // 4: blocking; a context without an executor
  ZAK::FeedsDomain feeds{tool.client()};
  const std::vector<ZAK::LegacyPostDto> posts = tool.run(feeds.fetchFriends());
  require(posts.size() == 2, "Alice has two friends who posted");
}

}  // namespace

void threads() {
  ZAK::EmulatorThread backend;
  boost::asio::io_context io;
  const auto alice = std::make_shared<Alice>();
  const auto client = ZAK::MobileApiClient::create(contextFor(backend, io, alice));
  run(io, onOneThread(client, &backend));
  run(io, safeForms(client, std::nullopt));
  spawned(client, io);
  onAPool(backend);
  ZAK::Context context = contextFor(backend, io, alice);
  context.executor = {};
  blocking(std::move(context));
}
