#include "Kit.hpp"

#include <zvapikit/domains/MemoriesDomain.hpp>

#include <boost/asio/cancellation_signal.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/strand.hpp>
#include <boost/asio/thread_pool.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <gtest/gtest.h>

#include <atomic>
#include <deque>
#include <random>
#include <thread>

namespace ZAK::Tests {
namespace {

namespace asio = boost::asio;
using asio::cancellation_type;
using std::chrono::milliseconds;

// One call asks for a token, at the second attempt; another waits for that token; and one of them is rejected once.
TEST(KitLifetimes, CallsMayBeLeftAtEveryStep) {
  enum Way { cancel, dropClient, endContext, dropBoth };
  constexpr cancellation_type types[] = {cancellation_type::terminal, cancellation_type::partial,
                                         cancellation_type::total};
  for (const Way way : {cancel, dropClient, endContext, dropBoth}) {
    int cancelled = 0;
    int uncancelled = 0;
    bool ended = false;
    for (int steps = 0; !ended; ++steps) {
      SCOPED_TRACE("way " + std::to_string(way) + " after handler " + std::to_string(steps));
      Kit kit({.clock = ManualClock::manual});
      kit.emulator->inject({.server = EmulatorServer::authentication, .answer = EmulatorResponse{503}});
      kit.emulator->inject({.server = EmulatorServer::mobile, .answer = EmulatorResponse{401}});
      Running<void> first(kit.runner.context(), kit.reading());
      kit.start(kit.reading());
      for (int i = 0; i < steps; ++i) {
        if (kit.clock->pendingWaits() > 0) kit.clock->advance(std::chrono::minutes(1));
        kit.runner.context().run_one_for(std::chrono::seconds(10));
      }
      const bool firstEnded = first.done();
      ended = firstEnded && !kit.outcomes->empty();
      if (way == cancel) {
        const std::size_t served = kit.emulator->counts().of("GET /content/posts/{postId}");
        first.cancel.emit(types[steps % 3]);
        kit.runner.poll();
        EXPECT_TRUE(first.done()) << "at once";
        cancelled += first.wasCancelled();
        if (!firstEnded && !first.wasCancelled()) {
          ++uncancelled;
          EXPECT_GE(served, 2u) << "only a call that has been answered cannot be cancelled";
        }
      }
      if (way == dropClient || way == dropBoth) {
        kit.client.reset();
        kit.logger.reset();
        kit.monitor.reset();
      }
      if (way == endContext || way == dropBoth) {
        kit.runner.destroyContext();
        EXPECT_EQ(first.done(), firstEnded) << "calls are dropped without resuming";
        continue;
      }
      kit.finish();
      ASSERT_TRUE(first.done());
      if (way == dropClient) {
        const std::string expected = steps == 0 ? "ZAKError: No client available" : "ok";
        EXPECT_EQ(outcome(first.error), expected);
        EXPECT_EQ(*kit.outcomes, Texts{expected});
      } else {
        EXPECT_EQ(std::exchange(*kit.outcomes, {}), Texts{"ok"});
        EXPECT_EQ(kit.outcomeOf(kit.reading()), "ok") << "the client is as good as before";
      }
    }
    EXPECT_TRUE(way != cancel || cancelled > 2 * uncancelled) << cancelled << " and " << uncancelled;
  }
}

/// Many calls at once on several threads, each on a strand of its own, some of them cancelled there. They share tokens
/// and downloads.
class Crowd {
 public:
  Crowd(Kit& kit, asio::any_io_executor executor) : kit_(kit) {
    Context context = kit.context();
    context.executor = executor;
    context.clock = nullptr;
    kit.emulator->inject({.server = EmulatorServer::mobile, .times = 30, .delay = milliseconds(100)});
    kit.emulator->inject({.server = EmulatorServer::storage,
                          .times = EmulatorFault::always,
                          .answer = EmulatorResponse{200, std::string(100'000, 'v')},
                          .dripBytes = 10'000});
    client_ = MobileApiClient::create(std::move(context));
    for (std::size_t i = 0; i < size; ++i) {
      const auto strand = asio::make_strand(executor);
      asio::cancellation_signal& signal = signals_.emplace_back();
      asio::co_spawn(strand, work(client_),
                     asio::bind_cancellation_slot(signal.slot(), [this](std::exception_ptr failure) {
                       const std::string ended = outcome(failure);
                       EXPECT_TRUE(ended == "ok" || ended == "cancelled") << ended;
                       ++(ended == "ok" ? finished_ : cancelled_);
                     }));
      if (i % 2 == 0) asio::co_spawn(strand, cancelSoon(&signal, milliseconds(random_() % 200)), asio::detached);
    }
  }

  /// To be called while they run.
  void disturb() {
    std::this_thread::sleep_for(milliseconds(40));
    kit_.emulator->expireTokens();
  }

  void check() const {
    EXPECT_EQ(finished_ + cancelled_, size);
    EXPECT_GE(finished_, size / 2);
    EXPECT_GT(cancelled_, 0u);
  }

 private:
  static constexpr std::size_t size = 64;

  static awaitable<void> work(std::shared_ptr<MobileApiClient> client) {
    const URL video = URL::parse("https://storage.zolvi.example/zolvi-photos-dev/v.mp4").value();
    for (int i = 0; i < 3; ++i) {
      const NewPostDto post = co_await ContentDomain(client).post(PostId("post-bob"));
      EXPECT_EQ(post.id, "post-bob");
      co_await MemoriesDomain(client).getVideo(video, true, "shared by all");
    }
  }
  static awaitable<void> cancelSoon(asio::cancellation_signal* signal, milliseconds delay) {
    asio::steady_timer timer(co_await asio::this_coro::executor, delay);
    co_await timer.async_wait(asio::use_awaitable);
    signal->emit(cancellation_type::total);
  }

  Kit& kit_;
  std::minstd_rand random_{20231114};
  std::deque<asio::cancellation_signal> signals_;
  std::shared_ptr<MobileApiClient> client_;
  std::atomic<std::size_t> finished_ = 0;
  std::atomic<std::size_t> cancelled_ = 0;
};

TEST(KitThreads, CallsEndOrAreCancelled) {
  Kit kit;
  asio::thread_pool pool(4);
  Crowd crowd(kit, pool.get_executor());
  crowd.disturb();
  pool.join();
  crowd.check();
}

}  // namespace
}  // namespace ZAK::Tests
