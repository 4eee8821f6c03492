#include "support/Runner.hpp"

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
using Tests::Running;

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

struct FunctionValidator : HTTPValidator {
  explicit FunctionValidator(std::function<HTTPValidatorResult(const HTTPResponse&)> decide)
      : decide_(std::move(decide)) {}
  HTTPValidatorResult validate(const HTTPResponse& response, const HTTPRequest&) override { return decide_(response); }

 private:
  std::function<HTTPValidatorResult(const HTTPResponse&)> decide_;
};

class HTTPClientTest : public testing::Test {
 protected:
  HTTPClientTest() { client->delegate = recorder; }

  HTTPResponse fetch(HTTPRequest request) { return runner.run(client->fetch(std::move(request))); }

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

  Tests::Runner runner;
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

asio::awaitable<void> sign(std::shared_ptr<HTTPRequest> target, std::string token, std::optional<int> limit) {
  target->headers.set(HTTPHeaders::Element::bearer(token));
  if (limit) target->maxRetries = *limit;
  co_return;
}

HTTPRetryStrategy::Task signer(std::string token, std::optional<int> limit = {}) {
  return [=](std::shared_ptr<HTTPRequest> target) { return sign(std::move(target), token, limit); };
}

TEST_F(HTTPClientTest, oneCountServesAllCausesOfRetriesAndTheTaskChangesTheRequest) {
  signAgainOn401(signer("new"));
  transport->add(ScriptedAnswer(lost));
  for (int i = 0; i < 3; ++i) transport->add(ScriptedAnswer(401));
  HTTPRequest sent = request(HTTPMethod::put, 2);
  sent.headers.set(HTTPHeaders::Element::bearer("old"));
  const HTTPResponse response = fetch(sent);
  EXPECT_EQ(response.error.value().description(), "HTTP 401 Unauthorized");
  EXPECT_EQ(response.metrics.attempt, 3);
  const std::vector<TransferRequest> requests = transport->requests();
  ASSERT_EQ(requests.size(), 3u);
  EXPECT_EQ(requests[1].headers.value("Authorization"), "Bearer old");
  EXPECT_EQ(requests[2].headers.value("Authorization"), "Bearer new");
  EXPECT_LE(milliseconds(500), clock->waits().at(0));
  EXPECT_EQ(clock->waits().at(1), milliseconds(100));
  EXPECT_THAT(recorder->events,
              ElementsAre("enqueued PUT /a https://h.example/api/a", "metrics 1", "retry 1 as Bearer old", "metrics 2",
                          "retry 2 as Bearer new", "metrics 3", "finished HTTP 401 Unauthorized"));
}

TEST_F(HTTPClientTest, aTaskResetsTheLimitButNotTheCount) {
  for (const auto& [first, later, sent] :
       std::vector<std::tuple<int, int, std::size_t>>{{1, 2, 3}, {5, 2, 3}, {3, 1, 2}, {1, 1, 2}}) {
    transport = std::make_shared<ScriptedTransport>();
    client = HTTPClient::create(transport, URL::parse("https://h.example"), clock);
    signAgainOn401(signer("t", later));
    for (int i = 0; i < 8; ++i) transport->add(ScriptedAnswer(401));
    EXPECT_EQ(fetch(request(HTTPMethod::post, first)).statusCode.code(), 401);
    EXPECT_EQ(transport->requests().size(), sent) << first << " then " << later;
  }
}

TEST_F(HTTPClientTest, anObserverThatThrowsChangesNothing) {
  recorder->throws = true;
  transport->add(ScriptedAnswer(lost));
  transport->add(ScriptedAnswer(200, "", HTTPHeaders({HTTPHeaders::Element("WWW-Authenticate", "")})));
  EXPECT_FALSE(fetch(request(HTTPMethod::get, 1)).error);
  EXPECT_EQ(recorder->events.size(), 6u);
}

TEST_F(HTTPClientTest, cancellingEndsTheCallAtOnceAndSilently) {
  using asio::cancellation_type;
  enum class Stage { sending, task, waiting };
  for (const Stage stage : {Stage::sending, Stage::task, Stage::waiting}) {
    for (const auto type : {cancellation_type::terminal, cancellation_type::partial, cancellation_type::total}) {
      SCOPED_TRACE(std::to_string(int(stage)) + " " + std::to_string(int(type)));
      clock = std::make_shared<ManualClock>();
      transport = std::make_shared<ScriptedTransport>();
      client = HTTPClient::create(transport, URL::parse("https://h.example/api"), clock);
      client->delegate = recorder;
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
      stage == Stage::sending ? transport->add(ScriptedAnswer(401), hold) : transport->add(ScriptedAnswer(401));
      Running<HTTPResponse> call(runner.context(), client->fetch(request(HTTPMethod::get, 2)));
      runner.poll();
      ASSERT_FALSE(call.done());
      ASSERT_EQ(hold.waiting() + clock->pendingWaits(), 1u);
      call.cancel.emit(type);
      runner.poll();
      EXPECT_TRUE(call.wasCancelled());
      EXPECT_FALSE(reported);
      EXPECT_EQ(validated, stage == Stage::sending ? 0 : 1);
      EXPECT_EQ(transport->requests().size(), 1u);
      EXPECT_THAT(recorder->events, testing::Each(testing::Not(testing::StartsWith("finished"))));
      EXPECT_EQ(hold.waiting() + clock->pendingWaits(), 0u);
    }
  }
}

}  // namespace
}  // namespace ZAK
