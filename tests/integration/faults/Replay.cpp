#include "Replay.hpp"

#include <zvapikit/core/ZAKError.hpp>
#include <zvapikit/http/HTTPClient.hpp>
#include <zvapikit/json/JSONErrors.hpp>

namespace ZAK::Tests {

namespace {

/// Notes how a call ended, other than well.
void note(Replayed& replayed, const std::exception& failure) {
  expectNoSecret(failure.what());
  const auto* error = dynamic_cast<const ZAKError*>(&failure);
  replayed.undecodable = dynamic_cast<const DecodingError*>(&failure) != nullptr;
  if (error && error->underlyingError()) replayed.error = *error->underlyingError();
  EXPECT_TRUE(replayed.undecodable || replayed.error) << failure.what();
}

awaitable<void> readPost(ContentDomain content, std::shared_ptr<Replayed> replayed) {
  try {
    const NewPostDto post = co_await content.post(PostId("post-bob"));
    EXPECT_EQ(post.id, "post-bob");
    replayed->succeeded = true;
  } catch (const std::exception& failure) {
    note(*replayed, failure);
  }
}

awaitable<void> upload(std::shared_ptr<HTTPClient> client, HTTPRequest request, std::shared_ptr<Replayed> replayed) {
  const HTTPResponse response = co_await client->fetch(std::move(request));
  replayed->succeeded = !response.error;
  replayed->error = response.error;
}

}  // namespace

std::string healthyBody(Replay::Exchange exchange) {
  switch (exchange) {
    case Replay::Exchange::reading:
      return R"({"id": "post-bob", "caption": "by the sea"})";
    case Replay::Exchange::signingIn:
      return R"({"token_type": "bearer", "expires_in": 3600, "scope": "", "refresh_token": "refresh-1",)"
             R"( "firebase_token": null, "access_token": "access-1"})";
    default:
      return "stored";
  }
}

std::string answered(const std::string& body, Framing framing) {
  const std::string head = "HTTP/1.1 200 OK\r\nConnection: close\r\n";
  if (framing == Framing::connection) return head + "\r\n" + body;
  if (framing == Framing::length) return head + "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
  std::string answer = head + "Transfer-Encoding: chunked\r\n\r\n";
  constexpr std::size_t chunk = 15;
  for (std::size_t at = 0; at < body.size(); at += chunk) {
    const std::string part = body.substr(at, chunk);
    answer.append(1, "0123456789abcdef"[part.size()]).append("\r\n").append(part).append("\r\n");
  }
  return answer + "0\r\n\r\n";
}

/// Keeps what the failures to get a token were.
class Replay::TokenFailures final : public LoggerDelegate {
 public:
  explicit TokenFailures(std::shared_ptr<Replayed> replayed) : replayed_(std::move(replayed)) {}

  void message(std::string_view text, std::optional<std::string_view>) override { expectNoSecret(text); }
  void warning(std::string_view text) override { ADD_FAILURE() << text; }
  void error(std::string_view text, const std::exception* error) override {
    expectNoSecret(text);
    if (error && text.starts_with("[TokenManager]")) note(*replayed_, *error);
  }

 private:
  std::shared_ptr<Replayed> replayed_;
};

Replay::Replay(Exchange exchange, Options options)
    : exchange_(exchange),
      options_(options),
      fault_{NetworkFault::Step::asked, NetworkFault::Ending::stall},
      faulty_([this](FaultServer::Connection& connection) { serve(connection); }),
      healthy_(FaultServer::answering(
          answered(healthyBody(exchange == Exchange::reading ? Exchange::signingIn : Exchange::reading)))),
      logger_(std::make_shared<TokenFailures>(replayed_)) {
  kit_.client = MobileApiClient::create(context());
}

Context Replay::context() {
  Context context = kit_.context();
  context.logger = logger_;
  context.transport = TransportOptions();
  context.transport.caFile = authority().file();
  context.transport.stallTimeout = options_.patience;
  if (options_.refuses) context.transport.connectTo.emplace_back("localhost", faulty_.port(), "127.0.0.1", 1);
  const bool authFails = exchange_ == Exchange::signingIn;
  context.servers.authSandbox = (authFails ? faulty_ : healthy_).url("/auth");
  context.servers.mobileSandbox = (authFails ? healthy_ : faulty_).url("/api");
  return context;
}

awaitable<void> Replay::call() {
  if (exchange_ != Exchange::uploading) return readPost(ContentDomain(kit_.client), replayed_);
  HTTPRequest request(HTTPMethod::put, faulty_.url("/bucket/picture"));
  request.body = HTTPBody::data(std::string(200'000, 'x'));
  request.maxRetries = options_.maxRetries;
  return upload(kit_.client->buildRaw(), std::move(request), replayed_);
}

int Replay::attempts() const noexcept {
  return exchange_ == Exchange::reading ? 3 : exchange_ == Exchange::signingIn ? 1 : 1 + options_.maxRetries;
}

Replayed Replay::runHealthy() {
  return run({NetworkFault::Step::asked, NetworkFault::Ending::close, answered(healthyBody(exchange_))});
}

Replayed Replay::run(NetworkFault fault) {
  std::unique_lock lock(mutex_);
  fault_ = std::move(fault);
  lock.unlock();
  met_ = 0;
  *replayed_ = {};
  const auto begin = std::chrono::steady_clock::now();
  const int elsewhere = healthy_.requests();
  EXPECT_EQ(kit_.outcomeOf(call()), "ok");
  // Progress is measured over some seconds.
  EXPECT_LT(std::chrono::steady_clock::now() - begin, attempts() * options_.patience + std::chrono::seconds(10));
  // Where the token fails, the call that wanted it goes well all the same.
  if (exchange_ == Exchange::signingIn && (replayed_->error || replayed_->undecodable)) replayed_->succeeded = false;
  replayed_->met = met_;
  expectNoTrace(*replayed_, healthy_.requests() - elsewhere);
  return *replayed_;
}

void Replay::expectNoTrace(const Replayed& replayed, int elsewhere) {
  switch (exchange_) {
    case Exchange::reading:
      EXPECT_EQ(kit_.storedToken(), "access-1");
      EXPECT_EQ(healthy_.requests(), 1) << "asked for its token once and for all";
      break;
    case Exchange::signingIn:
      EXPECT_EQ(kit_.storedToken(), replayed.succeeded ? "access-1" : "");
      EXPECT_EQ(elsewhere, 1) << "the call goes out, signed or not";
      kit_.runner.run(kit_.client->clear());
      break;
    case Exchange::uploading:
      EXPECT_EQ(kit_.storedToken(), "");
      EXPECT_EQ(elsewhere, 0);
  }
}

void Replay::serve(FaultServer::Connection& connection) {
  using Step = NetworkFault::Step;
  constexpr void (FaultServer::Connection::*endings[])() = {
      &FaultServer::Connection::finish, &FaultServer::Connection::cut, &FaultServer::Connection::reset,
      &FaultServer::Connection::stall};
  std::unique_lock lock(mutex_);
  const NetworkFault fault = fault_;
  lock.unlock();
  if (fault.step >= Step::secured && !connection.handshake()) return;
  if (fault.step == Step::asked && connection.readRequest().empty()) return;
  ++met_;  // before the client can have seen anything
  if (fault.step == Step::greeted) connection.greet(fault.bytes);
  if (fault.step == Step::asked) connection.send(fault.bytes);
  (connection.*endings[static_cast<int>(fault.ending)])();
}

}  // namespace ZAK::Tests
