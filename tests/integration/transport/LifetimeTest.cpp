#include "BlockedResolver.hpp"
#include "FullListener.hpp"
#include "TransportFixture.hpp"

#include <boost/asio/bind_cancellation_slot.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/strand.hpp>
#include <boost/asio/thread_pool.hpp>
#include <boost/asio/use_awaitable.hpp>

#include <atomic>
#include <future>
#include <ostream>
#include <random>
#include <vector>

namespace ZAK::test {
namespace {

namespace asio = boost::asio;
using std::chrono::milliseconds;

enum class Stage { start, resolving, connecting, handshake, firstByte, midBody };
enum class Action { terminal, partial, total, endContext, dropTransport };

struct Case {
  Stage stage;
  Action action;
};

std::ostream& operator<<(std::ostream& stream, const Case& given) {
  static constexpr const char* stages[] = {"start", "resolving", "connecting", "handshake", "firstByte", "midBody"};
  static constexpr const char* actions[] = {"terminal", "partial", "total", "endContext", "dropTransport"};
  return stream << stages[static_cast<int>(given.stage)] << '_' << actions[static_cast<int>(given.action)];
}

asio::cancellation_type cancellationType(Action action) {
  switch (action) {
    case Action::terminal:
      return asio::cancellation_type::terminal;
    case Action::partial:
      return asio::cancellation_type::partial;
    case Action::total:
      return asio::cancellation_type::total;
    default:
      return asio::cancellation_type::none;
  }
}

/// Brings one transfer to a stage, holds it there, and lets it go on when told.
class Scene {
 public:
  Scene(Stage stage, const TestAuthority& authority)
      : stage_(stage), server_(authority.issue(), [this](FaultServer::Connection& client) { serve(client); }) {}
  ~Scene() { release(); }
  Scene(const Scene&) = delete;
  Scene& operator=(const Scene&) = delete;

  [[nodiscard]] std::string url() const {
    if (stage_ == Stage::connecting) return full_.url();
    return server_.url("/", stage_ == Stage::resolving ? "blocked.test" : "localhost");
  }
  [[nodiscard]] bool reached() const {
    if (stage_ == Stage::start) return true;
    if (stage_ == Stage::resolving) return BlockedResolver::blocked() > 0;
    if (stage_ == Stage::connecting) return std::chrono::steady_clock::now() > connectingBy_;
    return reached_;
  }
  void release() {
    if (std::exchange(released_, true)) return;
    gate_.set_value();
    BlockedResolver::release();
    full_.close();
  }

 private:
  void serve(FaultServer::Connection& client) {
    const std::string_view head = "HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n12345";
    if (stage_ == Stage::handshake) hold();
    if (!client.handshake() || client.readRequest().empty()) return;
    if (stage_ == Stage::firstByte) hold();
    client.send(head);
    if (stage_ == Stage::midBody) hold();
    client.send("67890");
    client.stall();
  }
  void hold() {
    reached_ = true;
    open_.wait();
  }

  Stage stage_;
  BlockedResolver resolver_;
  FullListener full_;
  std::chrono::steady_clock::time_point connectingBy_ = std::chrono::steady_clock::now() + milliseconds(50);
  std::promise<void> gate_;
  std::shared_future<void> open_ = gate_.get_future().share();
  std::atomic<bool> reached_{false};
  bool released_ = false;
  FaultServer server_;
};

class Lifetime : public TransportFixture, public testing::WithParamInterface<Case> {
 protected:
  /// Cancellation before the transfer is awaited, from within the coroutine that then awaits it.
  static asio::awaitable<void> callCancelled(asio::awaitable<TransferResult> transfer, std::shared_ptr<Outcome> outcome,
                                             asio::cancellation_type type) {
    co_await asio::this_coro::reset_cancellation_state(asio::enable_total_cancellation());
    co_await asio::this_coro::throw_if_cancelled(false);
    outcome->signal.emit(type);
    try {
      outcome->result = co_await std::move(transfer);
    } catch (...) {
      outcome->error = std::current_exception();
    }
  }
};

TEST_P(Lifetime, endsWithoutHangOrLeak) {
  const auto [stage, action] = GetParam();
  Scene scene(stage, authority());
  auto shared = transport();
  std::weak_ptr<Transport> watched = shared;
  std::shared_ptr<Outcome> outcome;
  const auto type = cancellationType(action);
  if (stage == Stage::start && type != asio::cancellation_type::none) {
    outcome = std::make_shared<Outcome>();
    asio::co_spawn(*io, callCancelled(shared->perform(get(scene.url())), outcome, type),
                   asio::bind_cancellation_slot(outcome->signal.slot(), asio::detached));
  } else {
    outcome = start(shared->perform(get(scene.url())));
    ASSERT_TRUE(runUntil([&] { return scene.reached(); }));
    EXPECT_FALSE(outcome->finished());
  }
  const auto begin = std::chrono::steady_clock::now();
  switch (action) {
    case Action::endContext:
      io.reset();
      EXPECT_FALSE(outcome->finished());
      EXPECT_EQ(outcome.use_count(), 1) << "the coroutine is still there";
      break;
    case Action::dropTransport:
      shared.reset();
      scene.release();
      ASSERT_TRUE(runDry());
      ASSERT_TRUE(outcome->result);
      EXPECT_EQ(outcome->result->response.hasAnswer(), stage != Stage::connecting);
      return;
    default:
      if (stage != Stage::start) outcome->signal.emit(type);
      ASSERT_TRUE(runDry());
      EXPECT_TRUE(outcome->cancelled());
  }
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(1)) << "the end was waited for";
  shared.reset();
  EXPECT_TRUE(watched.expired());
}

std::vector<Case> cases() {
  std::vector<Case> made;
  for (auto stage :
       {Stage::start, Stage::resolving, Stage::connecting, Stage::handshake, Stage::firstByte, Stage::midBody}) {
    for (auto action : {Action::terminal, Action::partial, Action::total, Action::endContext, Action::dropTransport}) {
      made.push_back({stage, action});
    }
  }
  return made;
}

INSTANTIATE_TEST_SUITE_P(Transport, Lifetime, testing::ValuesIn(cases()), testing::PrintToStringParamName());

using LifetimeTest = TransportFixture;

TEST_F(LifetimeTest, startedAfterTheContextFails) {
  auto shared = transport();
  io.reset();
  asio::io_context other;
  auto outcome = std::make_shared<Outcome>();
  asio::co_spawn(other, call(shared->perform(get("https://localhost/")), outcome), asio::detached);
  other.run();
  EXPECT_TRUE(outcome->cancelled());
}

TEST_F(LifetimeTest, neverAwaitedLeaksNothing) {
  std::weak_ptr<Transport> watched;
  {
    const auto shared = transport();
    watched = shared;
    const auto unused = shared->perform(get("https://localhost/"));
  }
  EXPECT_TRUE(watched.expired());
}

TEST_F(LifetimeTest, emptyExecutorIsRefused) {
  EXPECT_THROW(static_cast<void>(CurlTransport::create({})), std::invalid_argument);
}

TEST_F(LifetimeTest, processEndsWhileANameIsResolved) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto cancelAndExit = [this] {
    const BlockedResolver blocks;
    const auto shared = transport();
    const auto outcome = start(shared->perform(get("https://blocked.test/")));
    runUntil([] { return BlockedResolver::blocked() > 0; });
    outcome->signal.emit(asio::cancellation_type::terminal);
    runDry();
    std::exit(outcome->cancelled() ? 0 : 1);
  };
  EXPECT_EXIT(cancelAndExit(), testing::ExitedWithCode(0), "");
}

using Signal = std::shared_ptr<asio::cancellation_signal>;

/// A call among many. Keeps the signal that cancels it, as long as it may still listen to it.
asio::awaitable<void> callAmongMany(std::shared_ptr<Transport> shared, TransferRequest request, Signal,
                                    std::atomic<int>* ended) {
  try {
    co_await shared->perform(std::move(request));
  } catch (const boost::system::system_error&) {
  }
  ++*ended;
}

asio::awaitable<void> cancelAfter(Signal signal, milliseconds delay) {
  const auto executor = co_await asio::this_coro::executor;
  asio::steady_timer timer(executor, delay);
  co_await timer.async_wait(asio::use_awaitable);
  signal->emit(asio::cancellation_type::total);
}

TEST_F(LifetimeTest, fourThreadsCancelAtRandom) {
  // A server that ends connections in every way, so that the numbers of sockets come again all the time.
  const FaultServer server(authority().issue(), [](FaultServer::Connection& client) {
    const int way = client.index() % 4;
    if (way == 0) return client.reset();
    if (!client.handshake() || client.readRequest().empty()) return;
    if (way == 1) return client.cut();
    client.send("HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\n12");
    if (way == 2) return client.reset();
    client.send("34");
    while (!client.readRequest().empty()) client.send("HTTP/1.1 204 No Content\r\n\r\n");
  });
  constexpr int calls = 300;
  std::atomic<int> ended{0};
  asio::thread_pool pool(4);
  auto wide = options();
  wide.connectionsPerHost = 32;
  auto shared = CurlTransport::create(pool.get_executor(), wide);
  std::mt19937 random(1);
  for (int i = 0; i < calls; ++i) {
    const auto strand = asio::make_strand(pool);
    const auto cancels = std::make_shared<asio::cancellation_signal>();
    asio::post(strand, [=, &server, &ended, cancelled = i % 4 != 0, delay = milliseconds(random() % 200)] {
      asio::co_spawn(strand, callAmongMany(shared, get(server.url()), cancels, &ended),
                     asio::bind_cancellation_slot(cancels->slot(), asio::detached));
      if (cancelled) asio::co_spawn(strand, cancelAfter(cancels, delay), asio::detached);
    });
  }
  shared.reset();
  pool.join();
  EXPECT_EQ(ended, calls);
  EXPECT_GT(server.requests(), 4);
}

}  // namespace
}  // namespace ZAK::test
