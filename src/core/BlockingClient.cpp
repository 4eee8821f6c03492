#include <zvapikit/core/BlockingClient.hpp>
#include <zvapikit/core/Context.hpp>
#include <zvapikit/core/MobileApiClient.hpp>

#include <boost/asio/bind_cancellation_slot.hpp>
#include <boost/asio/cancellation_signal.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/error.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/system/system_error.hpp>

#include <atomic>
#include <exception>
#include <stdexcept>

namespace asio = boost::asio;

namespace ZAK {
namespace {

/// One call of `run`. Shared with the handlers that may outlast it.
struct Run {
  asio::cancellation_signal cancellation{};
  bool hasEnded = false;
  std::exception_ptr failure{};
};

}  // namespace

struct BlockingClient::Parts {
  explicit Parts(Context context) {
    if (context.executor) {
      throw std::invalid_argument("a blocking client has an executor of its own: leave the context's empty");
    }
    context.executor = io.get_executor();
    client = MobileApiClient::create(std::move(context));
  }

  asio::io_context io{1};
  std::shared_ptr<MobileApiClient> client;
  std::atomic<bool> isRunning = false;
};

BlockingClient::BlockingClient(Context context) : parts_(std::make_unique<Parts>(std::move(context))) {}

BlockingClient::~BlockingClient() = default;

const std::shared_ptr<MobileApiClient>& BlockingClient::client() const noexcept { return parts_->client; }

asio::any_io_executor BlockingClient::executor() const noexcept { return parts_->io.get_executor(); }

void BlockingClient::complete(asio::awaitable<void> operation, std::stop_token stop) {
  auto& io = parts_->io;
  if (parts_->isRunning.exchange(true)) throw std::logic_error("a blocking client runs one operation at a time");
  const std::unique_ptr<std::atomic<bool>, void (*)(std::atomic<bool>*)> running(
      &parts_->isRunning, [](std::atomic<bool>* isRunning) { *isRunning = false; });

  const auto run = std::make_shared<Run>();
  const auto cancel = [run, &io] {
    asio::post(io, [run] { run->cancellation.emit(asio::cancellation_type::terminal); });
  };
  // Before the operation is, so that a stop requested earlier gets there first.
  const std::stop_callback onStop(stop, cancel);
  asio::co_spawn(io, std::move(operation),
                 asio::bind_cancellation_slot(run->cancellation.slot(), [run](std::exception_ptr failure) {
                   run->hasEnded = true;
                   run->failure = std::move(failure);
                 }));
  io.restart();
  try {
    while (!run->hasEnded) {
      // The host stopped the context, or nothing is left that would resume the operation.
      if (io.run_one() == 0 && !run->hasEnded) throw boost::system::system_error(asio::error::operation_aborted);
    }
  } catch (...) {
    cancel();
    throw;
  }
  if (run->failure) std::rethrow_exception(run->failure);
}

}  // namespace ZAK
