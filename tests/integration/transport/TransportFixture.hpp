#pragma once

#include "support/FaultServer.hpp"
#include "support/TestAuthority.hpp"

#include <zvapikit/http/CurlTransport.hpp>

#include <boost/asio/awaitable.hpp>
#include <boost/asio/cancellation_signal.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>
#include <gtest/gtest.h>

#include <chrono>
#include <exception>
#include <memory>
#include <optional>
#include <string>

namespace ZAK::test {

/// What became of a call that runs on its own. To be held until the call has ended.
struct Outcome {
  /// Cancels the call.
  boost::asio::cancellation_signal signal;
  std::optional<TransferResult> result;
  std::exception_ptr error;

  [[nodiscard]] bool finished() const { return result || error; }
  /// The error is `operation_aborted`.
  [[nodiscard]] bool cancelled() const;
};

/// Awaits one transfer and notes how it ends.
boost::asio::awaitable<void> call(boost::asio::awaitable<TransferResult> transfer, std::shared_ptr<Outcome> outcome);

[[nodiscard]] TransferRequest get(std::string url);

/// An execution context, and an authority that the transports made here trust.
class TransportFixture : public testing::Test {
 protected:
  /// The context must have run dry by itself.
  void TearDown() override;

  [[nodiscard]] TransportOptions options() const;
  [[nodiscard]] std::shared_ptr<Transport> transport() { return CurlTransport::create(io->get_executor(), options()); }

  /// Starts a call.
  std::shared_ptr<Outcome> start(boost::asio::awaitable<TransferResult> transfer);
  /// Runs the context until there is nothing left to do; false after a time that no test takes.
  bool runDry();
  /// Runs the context until the condition holds; false after a time that no test takes.
  template <class Condition>
  bool runUntil(Condition condition) {
    const auto end = std::chrono::steady_clock::now() + patience;
    while (!condition()) {
      if (std::chrono::steady_clock::now() > end) return false;
      io->restart();
      io->run_for(std::chrono::milliseconds(2));
    }
    return true;
  }
  /// Carries one transfer through from start to end.
  TransferResult perform(const std::shared_ptr<Transport>& transport, TransferRequest request);
  /// The same with a transport of its own.
  TransferResult perform(TransferRequest request) { return perform(transport(), std::move(request)); }

  static constexpr std::chrono::seconds patience{20};

  std::unique_ptr<boost::asio::io_context> io = std::make_unique<boost::asio::io_context>();
  static const TestAuthority& authority();
};

}  // namespace ZAK::test
