#include "Snippets.hpp"

#include <zvapikit/core/LoggerDelegate.hpp>
#include <zvapikit/core/MonitorDelegate.hpp>
#include <zvapikit/domains/FeedsDomain.hpp>

#include <atomic>
#include <iostream>
#include <sstream>

namespace {

class StreamLogger : public ZAK::LoggerDelegate {
 public:
  explicit StreamLogger(std::ostream& out) : out_(out) {}

  void message(std::string_view text, std::optional<std::string_view>) override { write("info: ", text); }
  void warning(std::string_view text) override { write("warning: ", text); }
  void error(std::string_view text, const std::exception*) override { write("error: ", text); }

 private:
  // Several threads may log at once: one write a line keeps the lines whole.
  void write(std::string_view level, std::string_view text) {
    out_ << std::string(level).append(text).append("\n") << std::flush;
  }

  std::ostream& out_;
};

class Statistics : public ZAK::MonitorDelegate {
 public:
  void didEnqueue(const ZAK::HTTPRequest&, const ZAK::HTTPTransfer&) override { ++calls; }
  void didCollectMetrics(const ZAK::HTTPRequest&, const ZAK::HTTPMetrics& metrics) override {
    ++attempts;
    microseconds += metrics.total.count();
  }
  void didComplete(const ZAK::HTTPRequest&, const ZAK::HTTPError* error) override { failures += error != nullptr; }
  void didReceive(const ZAK::HTTPRequest&, std::optional<std::string_view>) override {}

  std::atomic<long> calls = 0, attempts = 0, failures = 0, microseconds = 0;
};

boost::asio::awaitable<void> readFeed(std::shared_ptr<ZAK::MobileApiClient> client) {
  ZAK::FeedsDomain feeds{client};
  co_await feeds.fetchFriends();
}

}  // namespace

void logging() {
  ZAK::EmulatorThread backend;
  boost::asio::io_context io;
  const auto alice = std::make_shared<Alice>();
  std::ostringstream lines;
  const auto logger = std::make_shared<StreamLogger>(lines);
  const auto statistics = std::make_shared<Statistics>();
  ZAK::Context context = contextFor(backend, io, alice);
  context.logger = logger;
  context.monitor = statistics;
  context.redactsSecrets = true;
  const auto client = ZAK::MobileApiClient::create(std::move(context));
  backend->inject({.server = ZAK::EmulatorServer::mobile, .answer = ZAK::EmulatorResponse{401}});
  run(io, readFeed(client));
  require(statistics->calls == 3 && statistics->attempts == 4 && statistics->failures == 0, "calls are miscounted");
  require(lines.str().find("info: [ZAK] request : GET /feeds/friends ✅\n") != std::string::npos, "a line is missing");
  require(lines.str().find("bearer: <redacted>") != std::string::npos, "a token was logged");
}
