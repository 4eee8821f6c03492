#include "Running.hpp"

#include <zvapikit/http/HTTPClient.hpp>
#include <zvapikit/http/ManualClock.hpp>
#include <zvapikit/http/ScriptedTransport.hpp>

#include <gmock/gmock.h>

#include <functional>
#include <stdexcept>

namespace ZAK {
namespace {

namespace asio = boost::asio;
using std::chrono::milliseconds;
using testing::ElementsAre;

/// Writes down what it is told.
class Recorder : public HTTPClientDelegate {
 public:
  void didEnqueue(const HTTPRequest& request, const HTTPTransfer& transfer) override {
    note("enqueued " + request.description() + " " + transfer.url().string());
  }
  void willRetry(const HTTPRequest& request, int retry, milliseconds) override {
    note("retry " + std::to_string(retry) + " as " + request.headers.value("Authorization").value_or("nobody"));
  }
  void didRedirect(const HTTPRequest&, const URL& destination) override { note("redirected " + destination.string()); }
  void didReceiveAuthenticationChallenge(const HTTPRequest&, const HTTPResponse&) override { note("challenged"); }
  void isWaitingForConnectivity(const HTTPRequest&) override { note("waiting"); }
  void didCollectMetrics(const HTTPRequest&, const HTTPMetrics& metrics) override {
    note("metrics " + std::to_string(metrics.attempt));
  }
  void didFinish(const HTTPRequest&, const HTTPResponse& response) override {
    note("finished " + (response.error ? response.error->description() : response.statusCode.description()));
  }

  std::vector<std::string> events;
  bool throws = false;

 private:
  void note(std::string event) {
    events.push_back(std::move(event));
    if (throws) throw std::runtime_error("observer");
  }
};

class FunctionValidator : public HTTPValidator {
 public:
  using Function = std::function<HTTPValidatorResult(const HTTPResponse&)>;
  explicit FunctionValidator(Function function) : function_(std::move(function)) {}
  HTTPValidatorResult validate(const HTTPResponse& response, const HTTPRequest&) override {
    return function_(response);
  }

 private:
  Function function_;
};

class HTTPClientTest : public testing::Test {
 protected:
  HTTPClientTest() { client->delegate = recorder; }
  ~HTTPClientTest() override {
    context.restart();
    EXPECT_EQ(context.poll(), 0u) << "work is left on the executor";
  }

  HTTPResponse fetch(HTTPRequest request) {
    Running<HTTPResponse> call(context, client->fetch(std::move(request)));
    context.restart();
    context.run();
    if (call.error) std::rethrow_exception(call.error);
    return call.value.value();
  }

  static HTTPRequest request(HTTPMethod method, int maxRetries) {
    HTTPRequest request(method, "/a");
    request.maxRetries = maxRetries;
    return request;
  }

  /// Retries every 401 after the task.
  void signAgainOn401(HTTPRetryStrategy::Task task, HTTPRetryStrategy::ErrorHandler onError = {}) {
    client->insertValidatorAtFront(std::make_shared<FunctionValidator>([=](const HTTPResponse& response) {
      if (response.statusCode.code() != 401) return HTTPValidatorResult::next();
      return HTTPValidatorResult::retry(HTTPRetryStrategy::afterTask(milliseconds(100), task, onError));
    }));
  }

  void useManualClock() {
    clock = std::make_shared<ManualClock>();
    client = HTTPClient::create(transport, URL::parse("https://h.example/api"), clock);
    client->delegate = recorder;
  }

  asio::io_context context;
  std::shared_ptr<ScriptedTransport> transport = std::make_shared<ScriptedTransport>();
  std::shared_ptr<ManualClock> clock = std::make_shared<ManualClock>(ManualClock::autoAdvance);
  std::shared_ptr<HTTPClient> client = HTTPClient::create(transport, URL::parse("https://h.example/api"), clock);
  std::shared_ptr<Recorder> recorder = std::make_shared<Recorder>();
};

const HTTPError lost(HTTPError::Kind::connectionLost, HTTPStatusCode(), "connection lost");

TEST_F(HTTPClientTest, sendsOnceAndNotifiesOnce) {
  client->headers.set({"User-Agent", "app"});
  client->maxRedirects = 5;
  ScriptedAnswer answer(200, "body", HTTPHeaders({HTTPHeaders::Element("WWW-Authenticate", "Basic")}));
  answer.result.redirects = {*URL::parse("https://two.example/"), *URL::parse("https://three.example/")};
  transport->add(std::move(answer));
  HTTPRequest sent(HTTPMethod::post, "/a/{id}", {{"id", "1"}});
  sent.timeout = milliseconds(7);
  sent.body = HTTPBody::data("bytes");
  const HTTPResponse response = fetch(sent);
  EXPECT_EQ(response.body, "body");
  EXPECT_FALSE(response.error);
  EXPECT_EQ(response.metrics.redirects, 2);
  const std::vector<TransferRequest> requests = transport->requests();
  ASSERT_EQ(requests.size(), 1u);
  EXPECT_EQ(requests[0].method, HTTPMethod::post);
  EXPECT_EQ(requests[0].url, "https://h.example/api/a/1");
  EXPECT_EQ(requests[0].headers.value("User-Agent"), "app");
  EXPECT_EQ(requests[0].body.bytes(), "bytes");
  EXPECT_EQ(requests[0].timeout, milliseconds(7));
  EXPECT_EQ(requests[0].maxRedirects, 5);
  EXPECT_THAT(recorder->events,
              ElementsAre("enqueued POST /a/1 https://h.example/api/a/1", "redirected https://two.example/",
                          "redirected https://three.example/", "challenged", "metrics 1", "finished 200 OK"));
}

TEST_F(HTTPClientTest, anUnsendableRequestReachesNobody) {
  client->insertValidatorAtFront(std::make_shared<FunctionValidator>([](const HTTPResponse&) -> HTTPValidatorResult {
    ADD_FAILURE() << "validators saw a request that was not sent";
    return HTTPValidatorResult::next();
  }));
  const HTTPResponse response = fetch(HTTPRequest(HTTPMethod::get, "/{id}", {{"id", ".."}}));
  EXPECT_EQ(response.error.value().kind(), HTTPError::Kind::invalidRequest);
  EXPECT_TRUE(recorder->events.empty());
  EXPECT_TRUE(transport->requests().empty());
}

TEST_F(HTTPClientTest, retriesAFailedTransferWithGrowingWaits) {
  for (int i = 0; i < 3; ++i) transport->add(ScriptedAnswer(lost));
  transport->add(ScriptedAnswer(200));
  const HTTPResponse response = fetch(request(HTTPMethod::get, 3));
  EXPECT_FALSE(response.error);
  EXPECT_EQ(response.metrics.attempt, 4);
  const std::vector<milliseconds> waits = clock->waits();
  ASSERT_EQ(waits.size(), 3u);
  for (std::size_t i = 0; i < waits.size(); ++i) {
    EXPECT_GE(waits[i], milliseconds(500 << i));
    EXPECT_LE(waits[i], milliseconds(1000 << i));
  }
}

TEST_F(HTTPClientTest, stopsWhereRetryingIsNotAllowed) {
  struct Case {
    HTTPMethod method;
    int maxRetries;
    bool answerStarted;
    std::size_t sent;
  };
  for (const Case& c : {Case{HTTPMethod::get, 0, false, 1}, Case{HTTPMethod::get, 2, false, 3},
                        Case{HTTPMethod::post, 2, false, 1}, Case{HTTPMethod::get, 2, true, 1}}) {
    transport = std::make_shared<ScriptedTransport>();
    client = HTTPClient::create(transport, URL::parse("https://h.example"), clock);
    ScriptedAnswer failure(lost);
    failure.result.answerStarted = c.answerStarted;
    for (int i = 0; i < 4; ++i) transport->add(failure);
    EXPECT_EQ(fetch(request(c.method, c.maxRetries)).error.value().kind(), HTTPError::Kind::connectionLost);
    EXPECT_EQ(transport->requests().size(), c.sent) << rawValue(c.method) << " " << c.maxRetries;
  }
}

TEST_F(HTTPClientTest, oneCountServesAllCausesOfRetries) {
  signAgainOn401({});
  transport->add(ScriptedAnswer(lost));
  for (int i = 0; i < 3; ++i) transport->add(ScriptedAnswer(401));
  EXPECT_EQ(fetch(request(HTTPMethod::get, 2)).error.value().description(), "HTTP 401 Unauthorized");
  EXPECT_EQ(transport->requests().size(), 3u);
}

// The task is kept in a named object: a capturing coroutine must not outlive its captures.
struct Signer {
  std::string token;
  std::optional<int> maxRetries;

  asio::awaitable<void> operator()(std::shared_ptr<HTTPRequest> target) const {
    return sign(std::move(target), token, maxRetries);
  }
  static asio::awaitable<void> sign(std::shared_ptr<HTTPRequest> target, std::string token, std::optional<int> limit) {
    target->headers.set(HTTPHeaders::Element::bearer(token));
    if (limit) target->maxRetries = *limit;
    co_return;
  }
};

TEST_F(HTTPClientTest, sendsTheRequestAsTheTaskChangedIt) {
  signAgainOn401(Signer{"new", {}});
  transport->add(ScriptedAnswer(401));
  transport->add(ScriptedAnswer(204));
  HTTPRequest sent = request(HTTPMethod::post, 1);
  sent.headers.set(HTTPHeaders::Element::bearer("old"));
  EXPECT_FALSE(fetch(sent).error);
  const std::vector<TransferRequest> requests = transport->requests();
  EXPECT_EQ(requests.at(0).headers.value("Authorization"), "Bearer old");
  EXPECT_EQ(requests.at(1).headers.value("Authorization"), "Bearer new");
  EXPECT_THAT(clock->waits(), ElementsAre(milliseconds(100)));
  EXPECT_THAT(recorder->events, ElementsAre("enqueued POST /a https://h.example/api/a", "metrics 1",
                                            "retry 1 as Bearer new", "metrics 2", "finished 204 No Content"));
}

TEST_F(HTTPClientTest, aTaskResetsTheLimitButNotTheCount) {
  for (const auto& [first, later, sent] :
       std::vector<std::tuple<int, int, std::size_t>>{{1, 2, 3}, {5, 2, 3}, {3, 1, 2}, {1, 1, 2}}) {
    transport = std::make_shared<ScriptedTransport>();
    client = HTTPClient::create(transport, URL::parse("https://h.example"), clock);
    signAgainOn401(Signer{"t", later});
    for (int i = 0; i < 8; ++i) transport->add(ScriptedAnswer(401));
    EXPECT_EQ(fetch(request(HTTPMethod::get, first)).statusCode.code(), 401);
    EXPECT_EQ(transport->requests().size(), sent) << first << " then " << later;
  }
}

TEST_F(HTTPClientTest, aTaskThatMakesTheRequestUnsendableEndsTheCall) {
  signAgainOn401(Signer{"a\r\nb", {}});
  transport->add(ScriptedAnswer(401));
  EXPECT_EQ(fetch(request(HTTPMethod::get, 2)).error.value().kind(), HTTPError::Kind::invalidRequest);
  EXPECT_EQ(transport->requests().size(), 1u);
  EXPECT_THAT(recorder->events.back(), testing::StartsWith("finished the value of header Authorization"));
}

asio::awaitable<void> failingTask(std::shared_ptr<HTTPRequest>) {
  throw std::runtime_error("no token");
  co_return;
}

TEST_F(HTTPClientTest, aFailedTaskIsReportedAndTheRequestSent) {
  std::vector<std::string> reports;
  signAgainOn401(failingTask, [&](const std::exception_ptr& error) {
    try {
      std::rethrow_exception(error);
    } catch (const std::exception& failure) {
      reports.emplace_back(failure.what());
    }
    throw std::runtime_error("a reporter's own");
  });
  transport->add(ScriptedAnswer(401));
  transport->add(ScriptedAnswer(200));
  EXPECT_FALSE(fetch(request(HTTPMethod::get, 1)).error);
  EXPECT_THAT(reports, ElementsAre("no token"));
}

TEST_F(HTTPClientTest, anObserverThatThrowsChangesNothing) {
  recorder->throws = true;
  transport->add(ScriptedAnswer(lost));
  transport->add(ScriptedAnswer(200, "", HTTPHeaders({HTTPHeaders::Element("WWW-Authenticate", "")})));
  EXPECT_FALSE(fetch(request(HTTPMethod::get, 1)).error);
  EXPECT_EQ(recorder->events.size(), 6u);
}

TEST_F(HTTPClientTest, aCallKeepsWhatItNeeds) {
  const ScriptedHold hold;
  transport->add(ScriptedAnswer(lost), hold);
  transport->add(ScriptedAnswer(200));
  Running<HTTPResponse> call(context, client->fetch(request(HTTPMethod::get, 1)));
  context.poll();
  client.reset();
  recorder.reset();
  ScriptedHold(hold).release();
  context.restart();
  context.run();
  ASSERT_TRUE(call.value);
  EXPECT_FALSE(call.value->error);
}

TEST_F(HTTPClientTest, anAwaitableNeverAwaitedSendsNothing) {
  { const auto unused = client->fetch(request(HTTPMethod::get, 1)); }
  EXPECT_TRUE(transport->requests().empty());
  EXPECT_EQ(client.use_count(), 1);
}

// Where a call can be when it is cancelled.
enum class Stage { sending, task, waiting };

class HTTPClientCancellation : public HTTPClientTest,
                               public testing::WithParamInterface<std::tuple<Stage, asio::cancellation_type>> {};

TEST_P(HTTPClientCancellation, endsTheCallAtOnceAndSilently) {
  const auto [stage, type] = GetParam();
  useManualClock();
  int validated = 0;
  bool reported = false;
  const ScriptedHold hold;
  HTTPRetryStrategy::Task task;
  if (stage == Stage::task) task = [hold](const std::shared_ptr<HTTPRequest>&) { return hold.wait(); };
  signAgainOn401(task, [&](const std::exception_ptr&) { reported = true; });
  client->insertValidatorAtFront(std::make_shared<FunctionValidator>([&](const HTTPResponse&) {
    ++validated;
    return HTTPValidatorResult::next();
  }));
  if (stage == Stage::sending) {
    transport->add(ScriptedAnswer(401), hold);
  } else {
    transport->add(ScriptedAnswer(401));
  }
  Running<HTTPResponse> call(context, client->fetch(request(HTTPMethod::get, 2)));
  context.poll();
  ASSERT_FALSE(call.done);
  ASSERT_EQ(hold.waiting() + clock->pendingWaits(), 1u);
  call.cancel.emit(type);
  context.poll();
  EXPECT_TRUE(call.wasCancelled());
  EXPECT_FALSE(reported);
  EXPECT_EQ(validated, stage == Stage::sending ? 0 : 1);
  EXPECT_EQ(transport->requests().size(), 1u);
  EXPECT_THAT(recorder->events, testing::Each(testing::Not(testing::StartsWith("finished"))));
  EXPECT_EQ(hold.waiting() + clock->pendingWaits(), 0u);
}

INSTANTIATE_TEST_SUITE_P(EveryStageAndType, HTTPClientCancellation,
                         testing::Combine(testing::Values(Stage::sending, Stage::task, Stage::waiting),
                                          testing::Values(asio::cancellation_type::terminal,
                                                          asio::cancellation_type::partial,
                                                          asio::cancellation_type::total)));

}  // namespace
}  // namespace ZAK
