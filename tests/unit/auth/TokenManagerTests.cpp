#include "auth/TokenManager.hpp"
#include "http/Cancellation.hpp"
#include "support/Runner.hpp"

#include <zvapikit/http/ManualClock.hpp>
#include <zvapikit/http/ScriptedTransport.hpp>

#include <boost/asio/bind_cancellation_slot.hpp>
#include <boost/asio/cancellation_signal.hpp>
#include <gtest/gtest.h>

namespace ZAK {
namespace {

using boost::asio::awaitable;
using std::chrono::seconds;

/// Storage that a test can look into, also after the manager is gone.
struct Stored {
  std::optional<TokenDto> token;
  int reads = 0;
  int writes = 0;
};

class FakeStorage final : public TokenStorage {
 public:
  explicit FakeStorage(std::shared_ptr<Stored> stored) : stored_(std::move(stored)) {}
  std::optional<TokenDto> get() override {
    ++stored_->reads;
    return stored_->token;
  }
  void set(const std::optional<TokenDto>& token) override {
    ++stored_->writes;
    stored_->token = token;
  }

 private:
  std::shared_ptr<Stored> stored_;
};

/// The authentication server: hands out numbered tokens, or fails, once it is released.
struct Server {
  std::shared_ptr<ManualClock> clock;
  ScriptedHold hold;
  bool fails = false;
  std::vector<std::string> calls;

  TokenDto token(const std::string& name) const {
    return TokenDto("bearer", name, clock->now() + seconds(3600), "refresh-" + name, "scope", std::nullopt);
  }
};

class FakeSupplicant final : public TokenSupplicant {
 public:
  explicit FakeSupplicant(std::shared_ptr<Server> server) : server_(std::move(server)) {}
  awaitable<TokenDto> createToken() override { return answer(server_, "create"); }
  awaitable<TokenDto> refreshToken(TokenDto token) override { return answer(server_, "refresh " + token.refreshToken); }

 private:
  static awaitable<TokenDto> answer(std::shared_ptr<Server> server, std::string call) {
    server->calls.push_back(std::move(call));
    const std::string name = "t" + std::to_string(server->calls.size());
    co_await server->hold.wait();
    if (server->fails) throw std::runtime_error("no token");
    co_return server->token(name);
  }

  std::shared_ptr<Server> server_;
};

class TokenManagerTests : public testing::Test {
 protected:
  TokenManagerTests() {
    server->clock = clock;
    server->hold.release();
  }

  /// A token that expires that many seconds from now.
  TokenDto tokenFor(int lifetime) const {
    return TokenDto("bearer", "old", clock->now() + seconds(lifetime), "refresh-old", "scope", std::nullopt);
  }

  /// As the client calls it: open to every cancellation.
  static awaitable<std::optional<TokenDto>> openCall(std::shared_ptr<TokenManager> manager) {
    co_await acceptAllCancellation();
    co_return co_await manager->validToken();
  }

  /// Starts a call whose outcome lands in `results`, or in `cancelled`.
  void startCall(boost::asio::cancellation_slot slot = {}) {
    runner.start(openCall(manager), slot, [this](std::exception_ptr failure, std::optional<TokenDto> token) {
      failure ? void(++cancelled) : results.push_back(std::move(token));
    });
  }

  std::optional<TokenDto> validToken() { return runner.run(manager->validToken()); }

  std::shared_ptr<ManualClock> clock = std::make_shared<ManualClock>();
  std::shared_ptr<Server> server = std::make_shared<Server>();
  std::shared_ptr<Stored> stored = std::make_shared<Stored>();
  Tests::Runner runner;
  std::shared_ptr<TokenManager> manager =
      TokenManager::create(runner.executor(), std::make_unique<FakeStorage>(stored),
                           std::make_unique<FakeSupplicant>(server), nullptr, clock);
  std::vector<std::optional<TokenDto>> results;
  int cancelled = 0;
};

TEST_F(TokenManagerTests, RefreshesInTheLastMinuteOnly) {
  stored->token = tokenFor(61);
  EXPECT_EQ(validToken(), stored->token);
  EXPECT_EQ(stored->writes, 1);  // loaded into an empty memory: written back once
  clock->advance(seconds(1));    // 60 s left: still good
  EXPECT_EQ(validToken()->accessToken, "old");
  EXPECT_EQ(stored->writes, 1);
  EXPECT_EQ(stored->reads, 1);
  EXPECT_TRUE(server->calls.empty());
  clock->advance(seconds(1));
  EXPECT_EQ(validToken()->accessToken, "t1");
  EXPECT_EQ(server->calls, std::vector<std::string>{"refresh refresh-old"});
  EXPECT_EQ(stored->token->accessToken, "t1");
}

TEST_F(TokenManagerTests, ForgetsWhatItCouldNotRefresh) {
  stored->token = tokenFor(0);  // in storage only
  server->fails = true;
  EXPECT_FALSE(validToken());
  EXPECT_FALSE(stored->token);
  server->fails = false;
  EXPECT_TRUE(validToken());
  EXPECT_EQ(server->calls, (std::vector<std::string>{"refresh refresh-old", "create"}));
}

TEST_F(TokenManagerTests, DropsOnlyTheRejectedTokenThatLookedValid) {
  stored->token = tokenFor(61);
  ASSERT_TRUE(validToken());
  for (const auto& header : {std::optional<std::string>(), std::optional<std::string>("Bearer other")}) {
    runner.run(manager->invalidateToken(header));
    EXPECT_EQ(validToken()->accessToken, "old");
  }
  clock->advance(seconds(2));
  runner.run(manager->invalidateToken("Bearer old"));
  EXPECT_TRUE(stored->token) << "an expired token is refreshed, not dropped";

  EXPECT_EQ(validToken()->accessToken, "t1");
  runner.run(manager->invalidateToken("Bearer t1"));
  EXPECT_FALSE(stored->token);
  server->calls.clear();
  EXPECT_TRUE(validToken());
  EXPECT_EQ(server->calls, std::vector<std::string>{"create"});
}

TEST_F(TokenManagerTests, ClearDropsTheOutcomeOfARunningRefresh) {
  stored->token = tokenFor(0);
  server->hold = ScriptedHold();
  startCall();
  runner.poll();
  ASSERT_EQ(server->calls.size(), 1u);
  runner.start(manager->clear(), {}, [](const std::exception_ptr& failure) { EXPECT_FALSE(failure); });
  runner.poll();
  ASSERT_EQ(results.size(), 1u) << "who waits is told at once";
  EXPECT_FALSE(results[0]);
  startCall();  // a new sign-in, beside the refresh that still runs
  runner.poll();
  EXPECT_EQ(server->calls.size(), 2u);
  server->hold.release();
  runner.drain();
  ASSERT_EQ(results.size(), 2u);
  EXPECT_EQ(results[1]->accessToken, "t2");
  EXPECT_EQ(stored->token->accessToken, "t2");
  EXPECT_EQ(stored->writes, 2) << "one removal, one new token";
}

TEST_F(TokenManagerTests, CancellingCallersTouchesNoTokenAndEndsNoRefresh) {
  for (const auto type : {boost::asio::cancellation_type::terminal, boost::asio::cancellation_type::partial,
                          boost::asio::cancellation_type::total}) {
    stored->token = tokenFor(0);
    runner.run(manager->invalidateToken("Bearer none"));
    cancelled = 0;
    results.clear();
    server->calls.clear();
    server->hold = ScriptedHold();
    boost::asio::cancellation_signal first, last;
    startCall(first.slot());
    startCall(last.slot());
    runner.poll();
    EXPECT_EQ(server->calls.size(), 1u);
    first.emit(type);
    runner.poll();
    EXPECT_EQ(cancelled, 1);
    last.emit(type);
    runner.poll();
    EXPECT_EQ(cancelled, 2);
    EXPECT_TRUE(stored->token);
    server->hold.release();
    runner.drain();  // the refresh runs on and applies its outcome
    EXPECT_EQ(stored->token->accessToken, "t1");
    EXPECT_EQ(server->calls.size(), 1u);
    clock->advance(seconds(3600));
    runner.run(manager->clear());
  }
}

}  // namespace
}  // namespace ZAK
