#include "Snippets.hpp"

#include <zvapikit/core/ZAKError.hpp>
#include <zvapikit/domains/ContentDomain.hpp>
#include <zvapikit/domains/FeedsDomain.hpp>
#include <zvapikit/domains/MomentDomain.hpp>
#include <zvapikit/domains/ProfileDomain.hpp>
#include <zvapikit/domains/RelationshipsDomain.hpp>

#include <boost/asio/bind_cancellation_slot.hpp>
#include <boost/asio/cancellation_signal.hpp>
#include <boost/asio/deferred.hpp>
#include <boost/asio/error.hpp>
#include <boost/asio/experimental/awaitable_operators.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/strand.hpp>
#include <boost/asio/thread_pool.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/system/system_error.hpp>

#include <atomic>

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

// On a pool of threads: whoever cancels has to do it where the call runs.
void onAPool(const ZAK::EmulatorThread& backend) {
  boost::asio::thread_pool pool(4);
  const auto alice = std::make_shared<Alice>();
  boost::asio::io_context unused;
  ZAK::Context context = contextFor(backend, unused, alice);
  context.executor = pool.get_executor();
  const auto client = ZAK::MobileApiClient::create(std::move(context));

  const auto strand = boost::asio::make_strand(pool);
  boost::asio::cancellation_signal cancel;
  std::atomic<bool> cancelled = false;
  ZAK::FeedsDomain feeds{client};
  const auto ended = [&](std::exception_ptr failure, std::vector<ZAK::LegacyPostDto>) {
    try {
      if (failure) std::rethrow_exception(failure);
    } catch (const boost::system::system_error& error) {
      cancelled = error.code() == boost::asio::error::operation_aborted;
    }
  };
  boost::asio::co_spawn(strand, feeds.fetchFriends(), boost::asio::bind_cancellation_slot(cancel.slot(), ended));
  boost::asio::post(strand, [&] { cancel.emit(boost::asio::cancellation_type::total); });
  pool.join();
  require(cancelled, "the call was not cancelled");
}

}  // namespace

void threads() {
  ZAK::EmulatorThread backend;
  boost::asio::io_context io;
  const auto alice = std::make_shared<Alice>();
  const auto client = ZAK::MobileApiClient::create(contextFor(backend, io, alice));
  run(io, onOneThread(client, &backend));
  run(io, safeForms(client, std::nullopt));
  onAPool(backend);
}
