#include "http/Cancellation.hpp"
#include "http/PreparedRequest.hpp"
#include "http/Retry.hpp"

#include <zvapikit/http/HTTPClient.hpp>

#include <atomic>
#include <random>
#include <stdexcept>

namespace asio = boost::asio;

namespace ZAK {

namespace {

double jitter() {
  thread_local std::minstd_rand engine{std::random_device{}()};
  return std::uniform_real_distribution<double>(0.5, 1)(engine);
}

std::uint64_t nextIdentifier() {
  static std::atomic<std::uint64_t> last = 0;
  return ++last;
}

/// A retry's task has failed: the request is sent all the same, unless the call was cancelled.
void handleTaskFailure(const std::exception_ptr& failure, const HTTPRetryStrategy& strategy) {
  if (isCancellation(failure)) std::rethrow_exception(failure);
  if (!strategy.onError()) return;
  try {
    strategy.onError()(failure);
  } catch (...) {  // a reporter's own failure is nobody's business
  }
}

/// One call of `fetch`, with all it needs while it runs.
class Call {
 public:
  Call(std::shared_ptr<HTTPClient> client, std::shared_ptr<Transport> transport, std::shared_ptr<Clock> clock,
       HTTPRequest request)
      : client_(std::move(client)),
        transport_(std::move(transport)),
        clock_(std::move(clock)),
        request_(std::make_shared<HTTPRequest>(std::move(request))) {}

  static asio::awaitable<HTTPResponse> run(std::unique_ptr<Call> call) {
    co_await acceptAllCancellation();
    HTTPResponse response;
    std::optional<PreparedRequest> next = call->prepareAttempt(response);
    if (!next) co_return response;
    call->tell([&](HTTPClientDelegate& delegate) {
      const HTTPTransfer transfer(nextIdentifier(), next->url);
      delegate.didEnqueue(*call->request_, transfer);
    });
    while (next) {
      TransferResult result = co_await call->transport_->perform(std::move(next->transfer));
      response = call->finishedAttempt(std::move(result));
      const std::optional<HTTPRetryStrategy> strategy =
          judged(response, *call->request_, call->client_->validators, call->retries_);
      if (!strategy) break;
      ++call->retries_;
      if (strategy->task()) {
        std::exception_ptr failure;
        try {
          co_await strategy->task()(call->request_);
        } catch (...) {
          failure = std::current_exception();
        }
        if (failure) handleTaskFailure(failure, *strategy);
      }
      co_await call->clock_->wait(call->announcedDelay(*strategy, response));
      next = call->prepareAttempt(response);
    }
    call->tell([&](HTTPClientDelegate& delegate) { delegate.didFinish(*call->request_, response); });
    co_return response;
  }

 private:
  template <class Notify>
  void tell(Notify notify) const noexcept {
    const std::shared_ptr<HTTPClientDelegate> delegate = client_->delegate.lock();
    if (!delegate) return;
    try {
      notify(*delegate);
    } catch (...) {  // an observer never changes a call
    }
  }

  /// What goes out next; absent, with the error in `response`, when it cannot be sent.
  std::optional<PreparedRequest> prepareAttempt(HTTPResponse& response) const {
    try {
      return prepared(*request_, {client_->baseURL(), client_->headers, client_->maxRedirects});
    } catch (const HTTPError& error) {
      response = HTTPResponse();
      response.error = error;
      return std::nullopt;
    }
  }

  HTTPResponse finishedAttempt(TransferResult result) const {
    HTTPResponse response = std::move(result.response);
    response.answerStarted = result.answerStarted;
    response.metrics.statusCode = response.statusCode;
    response.metrics.contentType = response.headers.value("Content-Type").value_or(std::string());
    response.metrics.attempt = retries_ + 1;
    response.metrics.redirects = static_cast<int>(result.redirects.size());
    for (const URL& destination : result.redirects) {
      tell([&](HTTPClientDelegate& delegate) { delegate.didRedirect(*request_, destination); });
    }
    if (response.headers.contains("WWW-Authenticate")) {
      tell([&](HTTPClientDelegate& delegate) { delegate.didReceiveAuthenticationChallenge(*request_, response); });
    }
    tell([&](HTTPClientDelegate& delegate) { delegate.didCollectMetrics(*request_, response.metrics); });
    return response;
  }

  std::chrono::milliseconds announcedDelay(const HTTPRetryStrategy& strategy, const HTTPResponse& response) const {
    const std::chrono::milliseconds delay = retryDelay(strategy, response, retries_, jitter(), clock_->now());
    tell([&](HTTPClientDelegate& delegate) { delegate.willRetry(*request_, retries_, delay); });
    return delay;
  }

  std::shared_ptr<HTTPClient> client_;
  std::shared_ptr<Transport> transport_;
  std::shared_ptr<Clock> clock_;
  std::shared_ptr<HTTPRequest> request_;
  int retries_ = 0;
};

}  // namespace

std::shared_ptr<HTTPClient> HTTPClient::create(std::shared_ptr<Transport> transport, std::optional<URL> baseURL,
                                               std::shared_ptr<Clock> clock) {
  return std::make_shared<HTTPClient>(Private(), std::move(transport), std::move(baseURL), std::move(clock));
}

HTTPClient::HTTPClient(Private, std::shared_ptr<Transport> transport, std::optional<URL> baseURL,
                       std::shared_ptr<Clock> clock)
    : validators{makeDefaultValidator()},
      transport_(std::move(transport)),
      baseURL_(std::move(baseURL)),
      clock_(std::move(clock)) {
  if (!transport_ || !clock_) throw std::invalid_argument("HTTPClient: no transport or no clock");
}

void HTTPClient::insertValidatorAtFront(std::shared_ptr<HTTPValidator> validator) {
  validators.insert(validators.begin(), std::move(validator));
}

asio::awaitable<HTTPResponse> HTTPClient::fetch(HTTPRequest request) {
  return Call::run(std::make_unique<Call>(shared_from_this(), transport_, clock_, std::move(request)));
}

}  // namespace ZAK
