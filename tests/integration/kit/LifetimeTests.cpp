#include "Kit.hpp"

#include <boost/asio/cancellation_signal.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/strand.hpp>
#include <boost/asio/thread_pool.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <gtest/gtest.h>

#include <atomic>
#include <deque>
#include <functional>
#include <random>
#include <thread>

namespace ZAK::Test {
namespace {

namespace asio = boost::asio;
using asio::cancellation_type;
using std::chrono::milliseconds;

/// What a call waits for.
enum class Stage { answer, nextSend, nextTokenRequest, othersRefresh };

/// A kit with a call that waits.
struct Scene {
  /// `hold` is how long the back-end takes for its answer.
  Scene(Stage stage, milliseconds hold) {
    const bool signedIn = stage == Stage::answer || stage == Stage::nextSend;
    if (signedIn) kit.signIn();
    const bool fails = stage == Stage::nextSend || stage == Stage::nextTokenRequest;
    EmulatorFault fault{.delay = fails ? milliseconds(0) : hold};
    if (fails) fault.answer = EmulatorResponse{signedIn ? 401 : 503};
    const std::size_t number = kit.emulator->inject(fault);
    const auto waits = [&] { return fails ? kit.clock->pendingWaits() == 1 : kit.emulator->timesMet(number) == 1; };
    if (stage == Stage::othersRefresh) {
      kit.start(kit.reading());
      EXPECT_TRUE(kit.runUntil(waits));
    }
    kit.start(kit.reading(), signal.slot());
    EXPECT_TRUE(kit.runUntil(waits));
    kit.runner.poll();
    EXPECT_TRUE(kit.outcomes->empty());
  }

  asio::cancellation_signal signal;
  Kit kit{{.clock = ManualClock::manual}};
};

/// Has the check look at a call at each of its stages.
void atEachStage(milliseconds hold, const std::function<void(Scene&, Stage)>& check) {
  for (const Stage stage : {Stage::answer, Stage::nextSend, Stage::nextTokenRequest, Stage::othersRefresh}) {
    SCOPED_TRACE("stage " + std::to_string(static_cast<int>(stage)));
    Scene scene(stage, hold);
    check(scene, stage);
  }
}

constexpr milliseconds forEver = std::chrono::hours(1);
constexpr milliseconds aMoment{250};

TEST(KitLifetimes, ACallMayBeLeftAtEveryStep) {
  enum Way { cancel, dropClient, endContext };
  for (const Way way : {cancel, dropClient, endContext}) {
    bool ended = false;
    for (int steps = 0; !ended; ++steps) {
      SCOPED_TRACE("way " + std::to_string(way) + " after handler " + std::to_string(steps));
      Kit kit;
      asio::cancellation_signal signal;
      kit.start(kit.reading(), signal.slot());
      for (int i = 0; i < steps; ++i) kit.runner.context().run_one_for(std::chrono::seconds(10));
      ended = !kit.outcomes->empty();
      if (way == endContext) {
        kit.runner.destroyContext();
        continue;
      }
      way == cancel ? signal.emit(cancellation_type::total) : kit.client.reset();
      kit.finish();
      ASSERT_EQ(kit.outcomes->size(), 1u);
      const std::string outcome = std::exchange(*kit.outcomes, {}).front();
      if (way == dropClient) {
        EXPECT_EQ(outcome, steps == 0 ? "ZAKError: No client available" : "ok");
      } else {
        EXPECT_TRUE(outcome == "cancelled" || outcome == "ok") << outcome;
        EXPECT_EQ(kit.outcomeOf(kit.reading()), "ok") << "the client is as good as before";
      }
    }
  }
}

TEST(KitLifetimes, CancellingEndsACallAtOnce) {
  for (const auto type : {cancellation_type::terminal, cancellation_type::partial, cancellation_type::total}) {
    atEachStage(forEver, [type](Scene& scene, Stage) {
      scene.signal.emit(type);
      EXPECT_TRUE(scene.kit.runUntil([&] { return !scene.kit.outcomes->empty(); }));
      EXPECT_EQ(*scene.kit.outcomes, Texts{"cancelled"});
      scene.kit.emulator->stop();  // ends a token request that goes on without its caller
      scene.kit.finish();
    });
  }
}

TEST(KitLifetimes, ACallEndsWithoutClientAndDelegates) {
  atEachStage(aMoment, [](Scene& scene, Stage stage) {
    Kit& kit = scene.kit;
    kit.client.reset();
    kit.logger.reset();
    kit.monitor.reset();
    kit.firebase.reset();
    kit.finish();
    EXPECT_EQ(*kit.outcomes, Texts(stage == Stage::othersRefresh ? 2 : 1, "ok"));
  });
}

TEST(KitLifetimes, TheContextMayEndBeforeCallsAndClient) {
  for (const bool clientFirst : {true, false}) {
    atEachStage(forEver, [clientFirst](Scene& scene, Stage) {
      if (clientFirst) scene.kit.client.reset();
      scene.kit.runner.destroyContext();
      EXPECT_TRUE(scene.kit.outcomes->empty()) << "calls are dropped without resuming";
    });
  }
}

/// Many calls at once on several threads, each on a strand of its own, some of them cancelled there.
class Crowd {
 public:
  Crowd(Kit& kit, asio::any_io_executor executor) : kit_(kit) {
    Context context = kit.context();
    context.executor = executor;
    context.clock = nullptr;
    kit.emulator->inject({.server = EmulatorServer::mobile, .times = 30, .delay = milliseconds(100)});
    client_ = MobileApiClient::create(std::move(context));
    for (std::size_t i = 0; i < size; ++i) {
      const auto strand = asio::make_strand(executor);
      asio::cancellation_signal& signal = signals_.emplace_back();
      asio::co_spawn(strand, readThrice(ContentDomain(client_)),
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

  static awaitable<void> readThrice(ContentDomain content) {
    for (int i = 0; i < 3; ++i) {
      const NewPostDto post = co_await content.post(PostId("post-bob"));
      EXPECT_EQ(post.id, "post-bob");
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

TEST(KitThreads, CallsOfAPoolEndOrAreCancelled) {
  Kit kit;
  asio::thread_pool pool(4);
  Crowd crowd(kit, pool.get_executor());
  crowd.disturb();
  pool.join();
  crowd.check();
}

TEST(KitThreads, CallsOfAContextOfFourThreadsEndOrAreCancelled) {
  Kit kit;
  asio::io_context context;
  Crowd crowd(kit, context.get_executor());
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) threads.emplace_back([&context] { context.run(); });
  crowd.disturb();
  for (std::thread& thread : threads) thread.join();
  crowd.check();
}

}  // namespace
}  // namespace ZAK::Test
