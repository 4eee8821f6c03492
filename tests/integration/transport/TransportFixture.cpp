#include "TransportFixture.hpp"

#include <boost/asio/bind_cancellation_slot.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/error.hpp>
#include <boost/system/system_error.hpp>

#include <utility>

namespace ZAK::test {

bool Outcome::cancelled() const {
  if (!error) return false;
  try {
    std::rethrow_exception(error);
  } catch (const boost::system::system_error& failure) {
    return failure.code() == boost::asio::error::operation_aborted;
  } catch (...) {
    return false;
  }
}

boost::asio::awaitable<void> call(boost::asio::awaitable<TransferResult> transfer, std::shared_ptr<Outcome> outcome) {
  try {
    outcome->result = co_await std::move(transfer);
  } catch (...) {
    outcome->error = std::current_exception();
  }
}

TransferRequest get(std::string url) {
  TransferRequest request;
  request.url = std::move(url);
  return request;
}

void TransportFixture::TearDown() {
  if (!io) return;
  io->restart();
  io->run_for(std::chrono::seconds(1));
  EXPECT_TRUE(io->stopped()) << "something keeps the context running";
}

TransportOptions TransportFixture::options() const {
  TransportOptions made;
  made.caFile = authority().file();
  return made;
}

std::shared_ptr<Outcome> TransportFixture::start(boost::asio::awaitable<TransferResult> transfer) {
  auto outcome = std::make_shared<Outcome>();
  boost::asio::co_spawn(*io, call(std::move(transfer), outcome),
                        boost::asio::bind_cancellation_slot(outcome->signal.slot(), boost::asio::detached));
  return outcome;
}

bool TransportFixture::runDry() {
  io->restart();
  io->run_for(patience);
  return io->stopped();
}

TransferResult TransportFixture::perform(const std::shared_ptr<Transport>& transport, TransferRequest request) {
  const auto outcome = start(transport->perform(std::move(request)));
  EXPECT_TRUE(runDry());
  if (outcome->error) std::rethrow_exception(outcome->error);
  return outcome->result.value();
}

const TestAuthority& TransportFixture::authority() {
  static const TestAuthority made;
  return made;
}

}  // namespace ZAK::test
