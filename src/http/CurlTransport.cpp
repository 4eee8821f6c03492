#include "http/Cancellation.hpp"
#include "http/CurlEngine.hpp"
#include "http/CurlTransfer.hpp"
#include "http/Redirect.hpp"

#include <zvapikit/http/CurlTransport.hpp>

#include <boost/asio/cancellation_state.hpp>
#include <boost/asio/this_coro.hpp>

#include <chrono>
#include <utility>

namespace ZAK {
namespace {

using std::chrono::microseconds;

/// Makes the metrics of the last exchange those of the whole attempt.
void account(HTTPMetrics& metrics, microseconds earlier, std::size_t redirects) {
  for (auto phase :
       {&HTTPMetrics::nameLookup, &HTTPMetrics::connect, &HTTPMetrics::secureConnect, &HTTPMetrics::firstByte}) {
    if (metrics.*phase != microseconds::zero()) metrics.*phase += earlier;
  }
  metrics.total += earlier;
  metrics.redirects = static_cast<int>(redirects);
}

/// Ends a transfer that goes on while its caller does something else, when that never comes back to it.
struct Attendance {
  ~Attendance() {
    if (isAway) engine->abandon(transfer);
  }
  const std::shared_ptr<CurlEngine>& engine;
  const CurlEngine::Transfer& transfer;
  bool isAway = false;
};

boost::asio::awaitable<TransferResult> performOn(std::shared_ptr<CurlEngine> engine, TransferRequest request) {
  co_await acceptAllCancellation();
  const auto begin = std::chrono::steady_clock::now();
  std::vector<URL> redirects;
  for (;;) {
    const auto earlier = std::chrono::floor<microseconds>(std::chrono::steady_clock::now() - begin);
    const auto transfer = std::make_shared<CurlTransfer>(std::move(request));
    Attendance attendance{engine, transfer};
    TransferCounts told;
    do {
      const auto stage = co_await engine->run(transfer, told);
      attendance.isAway = !stage.ended;
      const auto state = co_await boost::asio::this_coro::cancellation_state;
      if (attendance.isAway && state.cancelled() != boost::asio::cancellation_type::none) throwCancelled();
      stage.counts.tell(transfer->request.progress, told);
      told = stage.counts;
    } while (attendance.isAway);
    auto& response = transfer->result.response;
    const auto step = nextStep(transfer->request, response, transfer->redirectTarget, redirects.size());
    if (!step.destination) {
      if (step.error) response.error = step.error;
      account(response.metrics, earlier, redirects.size());
      transfer->result.redirects = std::move(redirects);
      co_return std::move(transfer->result);
    }
    request = std::move(transfer->request);
    redirect(request, *step.destination);
    redirects.push_back(*step.destination);
  }
}

class EngineTransport final : public Transport {
 public:
  explicit EngineTransport(std::shared_ptr<CurlEngine> engine) : engine_(std::move(engine)) {}

  boost::asio::awaitable<TransferResult> perform(TransferRequest request) override {
    return performOn(engine_, std::move(request));
  }

 private:
  std::shared_ptr<CurlEngine> engine_;
};

}  // namespace

std::shared_ptr<Transport> CurlTransport::create(boost::asio::any_io_executor executor, TransportOptions options) {
  return std::make_shared<EngineTransport>(CurlEngine::create(executor, std::move(options)));
}

}  // namespace ZAK
