#include "Kit.hpp"

#include <zvapikit/core/BlockingClient.hpp>
#include <zvapikit/core/ZAKError.hpp>

#include <boost/asio/bind_executor.hpp>
#include <boost/asio/deferred.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/strand.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/asio/use_future.hpp>
#include <gtest/gtest.h>

#include <future>
#include <thread>

namespace ZAK::Tests {
namespace {

namespace asio = boost::asio;
using asio::cancellation_type;

constexpr cancellation_type cancellationTypes[] = {cancellation_type::terminal, cancellation_type::partial,
                                                   cancellation_type::total};

/// Unlike what the kit's own operations yield.
struct Ticket {
  explicit Ticket(int number_) : number(std::make_unique<int>(number_)) {}
  std::unique_ptr<int> number;
};

awaitable<Ticket> ticket() { co_return Ticket(7); }

awaitable<void> forever() {
  asio::steady_timer timer(co_await asio::this_coro::executor, std::chrono::hours(1));
  co_await timer.async_wait(asio::use_awaitable);
}

TEST(Spawn, TellsAnyTokenHowItEnded) {
  Kit kit;
  ContentDomain content(kit.client);
  asio::io_context elsewhere;
  Texts ended;
  const auto tell = [&](const auto& result) { ended.push_back(outcome(result.error())); };

  kit.client->spawn(content.post(PostId("post-bob")), [&](Outcome<NewPostDto> post) {
    tell(post);
    EXPECT_EQ(post.value().id, "post-bob");
  });
  kit.client->spawn(kit.reading(), [&](const Outcome<void>& read) { tell(read); });
  kit.client->spawn(ticket(), [&, mine = std::make_unique<int>()](Outcome<Ticket>&& drawn) {
    tell(drawn);
    EXPECT_EQ(*drawn.value().number, 7);
  });
  kit.client->spawn(content.post(PostId("post-of-nobody")), [&](const Outcome<NewPostDto>& post) {
    EXPECT_FALSE(post.has_value());
    EXPECT_THROW(post.value(), ZAKError);
  });
  kit.client->spawn(kit.reading(), asio::bind_executor(elsewhere, tell));
  std::future<NewPostDto> future = kit.client->spawn(content.post(PostId("post-bob")), asio::use_future);
  auto never = kit.client->spawn(kit.reading(), asio::deferred);
  kit.client.reset();  // the calls keep it
  kit.runner.drain();

  EXPECT_EQ(future.get().id, "post-bob");
  EXPECT_EQ(ended, Texts({"ok", "ok", "ok"}));
  elsewhere.run();
  EXPECT_EQ(ended.size(), 4u);
}

TEST(Spawn, CancelsWithEveryTypeAtAnyTime) {
  enum Moment { beforeItStarts, underWay, fromAnotherThread };
  for (const Moment moment : {beforeItStarts, underWay, fromAnotherThread}) {
    for (const cancellation_type type : cancellationTypes) {
      for (const bool isOurs : {true, false}) {
        SCOPED_TRACE("moment " + std::to_string(moment) + (isOurs ? ", a call" : ", a coroutine of the host's"));
        Kit kit;
        kit.signIn();
        kit.emulator->inject({.delay = std::chrono::hours(1)});
        std::string ended;
        asio::cancellation_signal signal;
        kit.client->spawn(isOurs ? kit.reading() : forever(),
                          asio::bind_cancellation_slot(signal.slot(), [&](const Outcome<void>& read) {  //
                            ended = outcome(read.error());
                          }));
        if (moment != beforeItStarts) {
          EXPECT_TRUE(kit.runner.runUntil([&] { return !isOurs || kit.emulator->counts().faults > 0; }));
        }
        if (moment == fromAnotherThread) {
          std::thread([&] { signal.emit(type); }).join();
        } else {
          signal.emit(type);
        }
        kit.runner.drain(std::chrono::seconds(10));
        EXPECT_EQ(ended, "cancelled");
      }
    }
  }
}

TEST(Spawn, LetsTheContextEndAtEveryStep) {
  bool hasEnded = false;
  for (int steps = 0; !hasEnded; ++steps) {
    Kit kit;
    asio::cancellation_signal signal;
    const auto callback = std::make_shared<int>();
    kit.client->spawn(kit.reading(),
                      asio::bind_cancellation_slot(signal.slot(), [&hasEnded, callback](const Outcome<void>&) {  //
                        hasEnded = true;
                      }));
    for (int i = 0; i < steps; ++i) kit.runner.context().run_one_for(std::chrono::seconds(10));
    const bool before = hasEnded;
    kit.runner.destroyContext();
    EXPECT_EQ(hasEnded, before);
    EXPECT_EQ(callback.use_count(), 1) << "the callback is destroyed";
    signal.emit(cancellation_type::terminal);
    EXPECT_THROW(kit.client->spawn(kit.reading(), [](const Outcome<void>&) {}), boost::system::system_error);
  }
}

/// A blocking client in the place of the kit's own.
class Blocking : public ::testing::Test {
 protected:
  Context context() {
    Context all = kit.context();
    all.executor = {};
    return all;
  }
  /// How the operation ended.
  std::string ran(awaitable<void> operation, std::stop_token stop = {}) {
    try {
      tool.run(std::move(operation), std::move(stop));
      return "ok";
    } catch (...) {
      return outcome(std::current_exception());
    }
  }

  Kit kit;
  BlockingClient tool{context()};
  ContentDomain content{tool.client()};
};

awaitable<void> ignoring(awaitable<NewPostDto> call) { co_await std::move(call); }

TEST_F(Blocking, YieldsOrThrowsWhatTheOperationDoes) {
  EXPECT_EQ(tool.run(content.post(PostId("post-bob"))).id, "post-bob");
  EXPECT_EQ(*tool.run(ticket()).number, 7);
  EXPECT_THROW(tool.run(content.post(PostId("post-of-nobody"))), ZAKError);
  EXPECT_EQ(ran(ignoring(content.post(PostId("post-bob")))), "ok") << "and goes on";
  EXPECT_THROW(BlockingClient{kit.context()}, std::invalid_argument) << "two executors";
}

TEST_F(Blocking, IsStoppedFromAnotherThread) {
  std::stop_source early;
  early.request_stop();
  EXPECT_EQ(ran(ignoring(content.post(PostId("post-bob"))), early.get_token()), "cancelled");
  EXPECT_TRUE(kit.requests().empty());

  kit.emulator->inject({.delay = std::chrono::hours(1)});
  std::stop_source stop;
  std::jthread other([&] {
    while (kit.emulator->counts().faults == 0) std::this_thread::yield();
    stop.request_stop();
  });
  EXPECT_EQ(ran(ignoring(content.post(PostId("post-bob"))), stop.get_token()), "cancelled");
}

TEST_F(Blocking, LeavesOtherWorkToTheNextRun) {
  Texts ended;
  tool.client()->spawn(ignoring(content.post(PostId("post-bob"))),
                       [&](const Outcome<void>& read) { ended.push_back(outcome(read.error())); });
  tool.run(ticket());
  EXPECT_EQ(ended, Texts());

  asio::post(tool.executor(), [&] {
    EXPECT_THROW(tool.run(ticket()), std::logic_error);
    throw std::runtime_error("from a callback");
  });
  EXPECT_EQ(ran(forever()), "from a callback");
  while (ended.empty()) tool.run(ignoring(content.post(PostId("post-bob"))));
  EXPECT_EQ(ended, Texts{"ok"});
}

TEST_F(Blocking, EndsWhenNothingCanResumeTheOperation) {
  asio::post(tool.executor(),
             [executor = tool.executor()] { executor.target<asio::io_context::executor_type>()->context().stop(); });
  EXPECT_EQ(ran(forever()), "cancelled") << "the host stopped the context";

  // What was to resume it is destroyed.
  const auto dropped = [](auto&& handler) { (void)std::decay_t<decltype(handler)>(std::move(handler)); };
  EXPECT_EQ(ran(asio::async_initiate<const asio::use_awaitable_t<>, void()>(dropped, asio::use_awaitable)),
            "cancelled");
  EXPECT_EQ(ran(ignoring(content.post(PostId("post-bob")))), "ok") << "and goes on";
}

}  // namespace
}  // namespace ZAK::Tests
