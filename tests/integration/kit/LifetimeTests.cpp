#include "Kit.hpp"

#include <boost/asio/cancellation_signal.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/strand.hpp>
#include <boost/asio/thread_pool.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <gtest/gtest.h>

#include <atomic>
#include <deque>
#include <random>
#include <thread>

namespace ZAK::Test {
namespace {

namespace asio = boost::asio;
using asio::cancellation_type;
using std::chrono::milliseconds;

/// Takes connections, and says nothing.
class SilentServer {
 public:
  SilentServer() : acceptor_(context_, {asio::ip::address_v4::loopback(), 0}), peer_(context_) {
    acceptor_.non_blocking(true);
  }
  [[nodiscard]] int port() const { return acceptor_.local_endpoint().port(); }
  /// True once a client has begun TLS.
  bool heardFromClient() {
    boost::system::error_code error;
    if (!peer_.is_open()) acceptor_.accept(peer_, error);
    return peer_.is_open() && peer_.available(error) > 0;
  }
  void close() {
    acceptor_.close();
    peer_.close();
  }

 private:
  asio::io_context context_;
  asio::ip::tcp::acceptor acceptor_;
  asio::ip::tcp::socket peer_;
};

/// Where a call waits.
enum class Stage { handshake, answer, body, retry, tokenBackOff, othersRefresh };
constexpr std::pair<Stage, const char*> stages[] = {{Stage::handshake, "handshake"},
                                                    {Stage::answer, "answer"},
                                                    {Stage::body, "rest of the body"},
                                                    {Stage::retry, "next send"},
                                                    {Stage::tokenBackOff, "next request for a token"},
                                                    {Stage::othersRefresh, "refresh of another call"}};

/// A kit with a call that is at a stage.
struct Scene {
  /// `hold` is how long the back-end keeps the call where it is.
  Scene(Stage stage, std::chrono::milliseconds hold) {
    if (stage != Stage::tokenBackOff && stage != Stage::othersRefresh) kit.signIn();
    EmulatorFault fault{.answer = EmulatorResponse{200, R"({"id":"post-bob"})" + std::string(1000, ' ')}};
    if (stage == Stage::answer) fault.delay = hold;
    if (stage == Stage::body) {
      fault.dripBytes = 600;
      fault.dripInterval = hold;
    }
    if (stage == Stage::retry) fault.answer->status = 401;
    if (stage == Stage::tokenBackOff) fault.answer->status = 503;
    if (stage == Stage::othersRefresh) {
      fault.answer.reset();
      fault.delay = hold;
    }
    const std::size_t number = kit.emulator->inject(fault);

    Context context = kit.context();
    if (stage == Stage::handshake) {
      context.transport.connectTo = {{std::string(), 0, "127.0.0.1", silence.port()}};
    }
    kit.client = MobileApiClient::create(std::move(context));
    if (stage == Stage::othersRefresh) {
      kit.start(kit.reading());
      EXPECT_TRUE(kit.runUntil([&] { return kit.emulator->timesMet(number) == 1; }));
    }
    kit.start(kit.reading(), signal.slot());
    const auto waits = [&] {
      if (stage == Stage::handshake) return silence.heardFromClient();
      if (stage == Stage::retry || stage == Stage::tokenBackOff) return kit.clock->pendingWaits() == 1;
      return kit.emulator->timesMet(number) == 1;
    };
    EXPECT_TRUE(kit.runUntil(waits));
    kit.runner.context().restart();
    if (stage == Stage::body || stage == Stage::othersRefresh) kit.runner.context().run_for(milliseconds(10));
    EXPECT_TRUE(kit.outcomes->empty());
  }

  SilentServer silence;
  asio::cancellation_signal signal;
  Kit kit{{.clock = ManualClock::manual}};
};

constexpr std::chrono::milliseconds forEver = std::chrono::hours(1);
constexpr std::chrono::milliseconds aMoment{50};

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
  for (const auto& [stage, name] : stages) {
    for (const auto type : {cancellation_type::terminal, cancellation_type::partial, cancellation_type::total}) {
      SCOPED_TRACE(std::string(name) + ", cancellation type " + std::to_string(static_cast<unsigned>(type)));
      Scene scene(stage, forEver);
      Kit& kit = scene.kit;
      scene.signal.emit(type);
      EXPECT_TRUE(kit.runUntil([&] { return !kit.outcomes->empty(); }));
      EXPECT_EQ(*kit.outcomes, Texts{"cancelled"});
      kit.emulator->stop();  // ends a token request that goes on without its caller
      kit.finish();
    }
  }
}

TEST(KitLifetimes, ACallEndsWithoutClientOrDelegates) {
  for (const auto& [stage, name] : stages) {
    for (const bool dropsClient : {true, false}) {
      SCOPED_TRACE(std::string(name) + (dropsClient ? ", client dropped" : ", delegates dropped"));
      Scene scene(stage, aMoment);
      Kit& kit = scene.kit;
      if (dropsClient) {
        kit.client.reset();
      } else {
        kit.logger.reset();
        kit.monitor.reset();
        kit.firebase.reset();
      }
      if (stage == Stage::handshake) scene.silence.close();
      kit.finish();
      ASSERT_EQ(kit.outcomes->size(), stage == Stage::othersRefresh ? 2u : 1u);
      std::string expected = "ok";
      if (stage == Stage::handshake) expected = "httpError: connection refused";
      EXPECT_EQ(kit.outcomes->back(), expected);
    }
  }
}

TEST(KitLifetimes, TheContextMayEndBeforeCallsAndClient) {
  for (const auto& [stage, name] : stages) {
    for (const bool clientFirst : {true, false}) {
      SCOPED_TRACE(std::string(name) + (clientFirst ? ", client dropped first" : ", client dropped last"));
      Scene scene(stage, forEver);
      if (clientFirst) scene.kit.client.reset();
      scene.kit.runner.destroyContext();
      EXPECT_TRUE(scene.kit.outcomes->empty()) << "calls are dropped without resuming";
    }
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
