#include "http/ContextStrand.hpp"

#include <boost/asio/error.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/strand.hpp>
#include <boost/asio/thread_pool.hpp>
#include <boost/system/system_error.hpp>
#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace ZAK {
namespace {

namespace asio = boost::asio;

/// Holds a timer with a wait that never ends.
struct Holder final : ContextBound {
  void contextShutdown() noexcept override {
    ++shutdowns;
    waitsEnded += timer->cancel();
    timer.reset();
  }
  std::unique_ptr<asio::steady_timer> timer;
  int shutdowns = 0;
  std::size_t waitsEnded = 0;
};

/// A context of some kind with an executor for it.
struct Host {
  std::shared_ptr<asio::execution_context> context;
  asio::any_io_executor executor;
};

std::vector<Host> hosts() {
  const auto plain = std::make_shared<asio::io_context>();
  const auto stranded = std::make_shared<asio::io_context>();
  const auto pool = std::make_shared<asio::thread_pool>(2);
  return {{plain, plain->get_executor()},
          {stranded, asio::make_strand(asio::any_io_executor(stranded->get_executor()))},
          {pool, pool->get_executor()}};
}

TEST(ContextBound, isToldOnceWhileItsTimerStillWorks) {
  for (auto& [context, executor] : hosts()) {
    const auto holder = std::make_shared<Holder>();
    bindToContext(executor, holder);
    holder->timer = std::make_unique<asio::steady_timer>(executor);
    holder->timer->expires_after(std::chrono::hours(1));
    holder->timer->async_wait([kept = std::make_shared<int>()](boost::system::error_code) {});
    executor = {};
    context.reset();
    EXPECT_EQ(holder->shutdowns, 1);
    EXPECT_EQ(holder->waitsEnded, 1U);
  }
}

bool isAborted(const ContextStrand& strand) {
  try {
    static_cast<void>(strand.executor());
    return false;
  } catch (const boost::system::system_error& error) {
    return error.code() == asio::error::operation_aborted;
  }
}

TEST(ContextStrand, outlivesItsContext) {
  for (auto& [context, executor] : hosts()) {
    const auto strand = ContextStrand::create(executor);
    EXPECT_FALSE(isAborted(*strand));
    executor = {};
    context.reset();
    EXPECT_TRUE(isAborted(*strand));
  }
  EXPECT_THROW(ContextStrand::create({}), std::invalid_argument);
}

TEST(ContextStrand, handlersThatGoWithItMayAskForIt) {
  auto context = std::make_unique<asio::io_context>();
  const auto strand = ContextStrand::create(context->get_executor());
  bool asked = false;
  std::shared_ptr<void> asks(nullptr, [&](void*) { asked = isAborted(*strand); });
  asio::post(strand->executor(), [asks = std::move(asks)] {});
  context.reset();
  EXPECT_TRUE(asked);
}

}  // namespace
}  // namespace ZAK
