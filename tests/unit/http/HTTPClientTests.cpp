#include "support/Runner.hpp"

#include <zvapikit/http/HTTPClient.hpp>
#include <zvapikit/http/ManualClock.hpp>
#include <zvapikit/http/ScriptedTransport.hpp>

#include <gmock/gmock.h>

#include <stdexcept>

namespace ZAK {
namespace {

namespace asio = boost::asio;
using std::chrono::milliseconds;
using testing::ElementsAre;

/// Writes down what it is told, and throws, which must change nothing.
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

 private:
  void note(std::string event) {
    events.push_back(std::move(event));
    throw std::runtime_error("an observer's own");
  }
};

asio::awaitable<void> sign(std::shared_ptr<HTTPRequest> target) {
  target->headers.set(HTTPHeaders::Element::bearer("new"));
  co_return;
}

/// Retries every 401, signed anew.
struct SigningValidator : HTTPValidator {
  HTTPValidatorResult validate(const HTTPResponse& response, const HTTPRequest&) override {
    if (response.statusCode.code() != 401) return HTTPValidatorResult::next();
    return HTTPValidatorResult::retry(HTTPRetryStrategy::afterTask(milliseconds(100), sign, {}));
  }
};

TEST(HTTPClient, countsAllCausesOfRetriesInOneAndTellsItsDelegateOfEachStep) {
  for (const int last : {200, 401}) {
    Tests::Runner runner;
    const auto transport = std::make_shared<ScriptedTransport>();
    const auto clock = std::make_shared<ManualClock>(ManualClock::autoAdvance);
    const auto client = HTTPClient::create(transport, URL::parse("https://h.example/api"), clock);
    const auto recorder = std::make_shared<Recorder>();
    client->delegate = recorder;
    client->insertValidatorAtFront(std::make_shared<SigningValidator>());
    client->maxRedirects = 5;
    transport->add(ScriptedAnswer(HTTPError(HTTPError::Kind::connectionLost, HTTPStatusCode(), "connection lost")));
    ScriptedAnswer refusal(401, "", HTTPHeaders({HTTPHeaders::Element("WWW-Authenticate", "Basic")}));
    refusal.result.redirects = {*URL::parse("https://two.example/"), *URL::parse("https://three.example/")};
    transport->add(std::move(refusal));
    transport->add(ScriptedAnswer(last));
    HTTPRequest sent(HTTPMethod::put, "/a/{id}", {{"id", "1"}});
    sent.maxRetries = 2;
    sent.timeout = milliseconds(7);
    sent.headers.set(HTTPHeaders::Element::bearer("old"));
    const HTTPResponse response = runner.run(client->fetch(sent));
    EXPECT_EQ(response.error.has_value(), last != 200);
    EXPECT_EQ(response.metrics.attempt, 3);
    const std::vector<TransferRequest> requests = transport->requests();
    ASSERT_EQ(requests.size(), 3u);
    EXPECT_EQ(requests[1].headers.value("Authorization"), "Bearer old");
    EXPECT_EQ(requests[2].headers.value("Authorization"), "Bearer new");
    EXPECT_EQ(requests[2].timeout, milliseconds(7));
    EXPECT_EQ(requests[2].maxRedirects, 5);
    EXPECT_LE(milliseconds(500), clock->waits().at(0));
    EXPECT_EQ(clock->waits().at(1), milliseconds(100));
    EXPECT_THAT(recorder->events,
                ElementsAre("enqueued PUT /a/1 https://h.example/api/a/1", "metrics 1", "retry 1 as Bearer old",
                            "redirected https://two.example/", "redirected https://three.example/", "challenged",
                            "metrics 2", "retry 2 as Bearer new", "metrics 3",
                            last == 200 ? "finished 200 OK" : "finished HTTP 401 Unauthorized"));
  }
}

}  // namespace
}  // namespace ZAK
