#include "BlockedResolver.hpp"
#include "FullListener.hpp"
#include "TransportFixture.hpp"
#include "support/TemporaryDirectory.hpp"

#include <atomic>
#include <future>

namespace ZAK::Tests {
namespace {

namespace asio = boost::asio;
using std::chrono::milliseconds;

enum class Stage { start, resolving, connecting, handshake, firstByte, midBody, midDownload };
enum class Action { terminal, partial, total, endContext, dropTransport };

asio::cancellation_type cancellationType(Action action) {
  constexpr asio::cancellation_type types[] = {
      asio::cancellation_type::terminal, asio::cancellation_type::partial, asio::cancellation_type::total, {}, {}};
  return types[static_cast<int>(action)];
}

/// Brings one transfer to a stage, holds it there, and lets it go on when told.
class Scene {
 public:
  explicit Scene(Stage stage) : stage_(stage) { blockResolver(true); }
  ~Scene() { release(); }
  Scene(const Scene&) = delete;
  Scene& operator=(const Scene&) = delete;

  [[nodiscard]] std::string url() const {
    if (stage_ == Stage::connecting) return full_.url();
    return server_.url("/", stage_ == Stage::resolving ? "blocked.test" : "localhost");
  }
  [[nodiscard]] bool reached() const {
    if (stage_ == Stage::start) return true;
    if (stage_ == Stage::resolving) return blockedLookUps() > 0;
    if (stage_ == Stage::connecting) return std::chrono::steady_clock::now() > connectingBy_;
    return reached_;
  }
  void release() {
    if (std::exchange(released_, true)) return;
    gate_.set_value();
    blockResolver(false);
    full_.close();
  }

 private:
  void serve(FaultServer::Connection& client) {
    if (stage_ == Stage::handshake) hold();
    if (!client.handshake() || client.readRequest().empty()) return;
    if (stage_ == Stage::firstByte) hold();
    client.send("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n12345");
    if (stage_ >= Stage::midBody) hold();
    client.send("67890");
    client.stall();
  }
  void hold() {
    reached_ = true;
    open_.wait();
  }

  Stage stage_;
  FullListener full_;
  std::chrono::steady_clock::time_point connectingBy_ = std::chrono::steady_clock::now() + milliseconds(50);
  std::promise<void> gate_;
  std::shared_future<void> open_ = gate_.get_future().share();
  std::atomic<bool> reached_{false};
  bool released_ = false;
  FaultServer server_{[this](FaultServer::Connection& client) { serve(client); }};
};

using Lifetime = TransportFixture;

class LifetimeAt : public TransportFixture, public testing::WithParamInterface<std::tuple<Stage, Action>> {};

TEST_P(LifetimeAt, endsWithoutHangOrLeak) {
  const auto [stage, action] = GetParam();
  Scene scene(stage);
  const TemporaryDirectory directory;
  auto request = get(scene.url());
  bool told = stage != Stage::midDownload;
  if (!told) {
    request.destination = directory.path() / "file";
    request.progress.received = [&](std::uint64_t, std::optional<std::uint64_t>) { told = true; };
  }
  auto shared = transport();
  std::weak_ptr<Transport> watched = shared;
  const auto type = cancellationType(action);
  const bool cancels = type != asio::cancellation_type::none;
  const Call call = start(shared->perform(request));
  ASSERT_TRUE(runner.runUntil([&] { return scene.reached() && told; }));
  EXPECT_FALSE(call->done());
  const auto begin = std::chrono::steady_clock::now();
  if (action == Action::dropTransport) {
    shared.reset();
    scene.release();
    runner.drain();
    EXPECT_EQ(call->result().response.hasAnswer(), stage != Stage::connecting);
    return;
  }
  if (cancels) {
    call->cancel.emit(type);
    runner.drain();
  } else {
    runner.destroyContext();
  }
  EXPECT_EQ(call->wasCancelled(), cancels);
  EXPECT_EQ(call->done(), cancels);
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(1)) << "the end was waited for";
  shared.reset();
  EXPECT_TRUE(watched.expired());
  EXPECT_TRUE(std::filesystem::is_empty(directory.path()));
}

INSTANTIATE_TEST_SUITE_P(Transport, LifetimeAt,
                         testing::Combine(testing::Values(Stage::start, Stage::resolving, Stage::connecting,
                                                          Stage::handshake, Stage::firstByte, Stage::midBody,
                                                          Stage::midDownload),
                                          testing::Values(Action::terminal, Action::partial, Action::total,
                                                          Action::endContext, Action::dropTransport)));

TEST_F(Lifetime, withoutItsContextOrATurnNothingHappens) {
  EXPECT_THROW(static_cast<void>(CurlTransport::create({})), std::invalid_argument);
  auto shared = transport();
  { const auto unused = shared->perform(get("https://localhost/")); }
  runner.destroyContext();
  asio::io_context other;
  Running<TransferResult> late(other, shared->perform(get("https://localhost/")));
  other.run();
  EXPECT_TRUE(late.wasCancelled());
  EXPECT_EQ(shared.use_count(), 1) << "kept by a call that was never awaited";
}

TEST_F(Lifetime, processEndsWhileANameIsResolved) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto cancelAndExit = [this] {
    blockResolver(true);
    const auto shared = transport();
    const Call call = start(shared->perform(get("https://blocked.test/")));
    runner.runUntil([] { return blockedLookUps() > 0; });
    call->cancel.emit(asio::cancellation_type::terminal);
    runner.drain();
    std::exit(call->wasCancelled() ? 0 : 1);
  };
  EXPECT_EXIT(cancelAndExit(), testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace ZAK::Tests
