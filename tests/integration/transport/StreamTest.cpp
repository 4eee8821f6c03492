#include "TransportFixture.hpp"
#include "support/TemporaryDirectory.hpp"

#include <zvapikit/http/HTTPClient.hpp>

#include <csignal>
#include <future>
#include <stdexcept>
#include <sys/resource.h>

namespace ZAK::Tests {
namespace {

namespace fs = std::filesystem;
using Connection = FaultServer::Connection;
using Kind = HTTPError::Kind;

/// What progress told, and whether it ever went past its total.
struct Told {
  HTTPProgress::Function listener() {
    return [this](std::uint64_t now, std::optional<std::uint64_t> all) {
      done = now;
      total = all;
      EXPECT_LE(now, all.value_or(now));
    };
  }
  std::uint64_t done = 0;
  std::optional<std::uint64_t> total;
};

class StreamTest : public TransportFixture {
 protected:
  HTTPResponse fetch(HTTPRequest request) {
    return runner.run(HTTPClient::create(transport())->fetch(std::move(request)));
  }
  TransferRequest download(const std::string& url) const {
    auto request = get(url);
    request.destination = destination_;
    return request;
  }
  /// The destination holds that, and the directory nothing else.
  void expectStored(const std::string& content) const {
    EXPECT_TRUE(contentOf(destination_) == content);
    EXPECT_EQ(std::distance(fs::directory_iterator(root_.path()), {}), 1);
  }

  TemporaryDirectory root_;
  fs::path destination_ = root_.path() / "destination";
};

TEST_F(StreamTest, aFileThatChangesWhileItIsSentIsNeverTakenForWhole) {
  for (const std::size_t size : {12 << 20, 17 << 20}) {
    std::promise<void> gate;
    const auto open = gate.get_future().share();
    const FaultServer server([&](Connection& client) {
      if (!client.handshake()) return;
      open.wait();
      while (!client.readRequest().empty()) client.send(answerOf(""));
    });
    const fs::path file = root_.write("file", std::string(16 << 20, 'x'));
    auto request = get(server.url());
    request.method = HTTPMethod::put;
    request.body = HTTPBody::file(file);
    Told sent;
    request.progress.sent = sent.listener();
    const auto shared = transport();
    const Call call = start(shared->perform(request));
    ASSERT_TRUE(runner.runUntil([&] { return sent.done > 0; }));
    fs::resize_file(file, size);
    gate.set_value();
    runner.drain();
    const auto response = call->result().response;
    ASSERT_EQ(errorKind(response), Kind::fileSystem) << told(response);
    EXPECT_NE(dynamic_cast<const fs::filesystem_error*>(response.error->underlyingError().get()), nullptr);
    EXPECT_EQ(server.requests(), 0);
    EXPECT_FALSE(perform(shared, get(server.url())).response.error) << "the broken connection was used again";
    EXPECT_EQ(server.connections(), 2);
  }
}

TEST_F(StreamTest, downloadsReplaceTheOldFileOnlyWhenWhole) {
  const std::string body(500'000, 'n');
  const std::string torn = answerOf(body).substr(0, 300'000);
  const auto answering = FaultServer::answering;
  const auto sendThen = FaultServer::answeringOnce;
  const struct {
    const char* name;
    FaultServer::Script script;
    std::string file;
    std::string inMemory = "";
    std::optional<Kind> error = {};
  } cases[] = {
      {"whole", answering(answerOf(body)), body},
      {"empty", answering(answerOf("")), ""},
      {"chunks", answering("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n3\r\nnew\r\n0\r\n\r\n"), "new"},
      {"no content", answering("HTTP/1.1 204 No Content\r\n\r\n"), "old"},
      {"not found", answering(answerOf("no", "", "404 Not Found")), "old", "no", Kind::status},
      {"redirect", answering(answerOf("x", "Location: /\r\n", "302 Found")), "old", "x", Kind::tooManyRedirects},
      {"torn", sendThen(torn, &Connection::finish), "old", "", Kind::connectionLost},
      {"cut", sendThen(torn, &Connection::cut), "old", "", Kind::connectionLost},
      {"without length", sendThen("HTTP/1.1 200 OK\r\n\r\n" + body, &Connection::cut), "old", "", Kind::invalidAnswer},
      {"reset", sendThen(torn, &Connection::reset), "old", "", Kind::connectionLost},
      {"stalled", sendThen(torn, &Connection::stall), "old", "", Kind::timedOut},
      {"coded as nothing", sendThen("HTTP/1.1 200 OK\r\nTransfer-Encoding: identity\r\n\r\n" + body, &Connection::cut),
       "old", "", Kind::invalidAnswer},
      {"a length past counting",
       sendThen("HTTP/1.1 200 OK\r\nContent-Length: 99999999999999999999\r\n\r\n" + body, &Connection::cut), "old", "",
       Kind::invalidAnswer},
      {"a part", answering("HTTP/1.1 206 Partial Content\r\nContent-Length: 3\r\n\r\nnew"), "old", "",
       Kind::invalidAnswer},
      {"two lengths", answering(answerOf("new", "Content-Length: 9\r\n")), "old", "", Kind::invalidAnswer},
  };
  for (const auto& given : cases) {
    SCOPED_TRACE(given.name);
    root_.write("destination", "old");
    const FaultServer server(given.script);
    HTTPRequest request(HTTPMethod::get, server.url());
    request.timeout = std::chrono::seconds(1);
    request.maxRedirects = 2;
    request.destination = destination_;
    Told received;
    request.progress.received = received.listener();
    const auto response = fetch(std::move(request));
    const bool replaced = given.file != "old";
    EXPECT_EQ(errorKind(response), given.error);
    EXPECT_EQ(response.file, replaced ? std::optional(destination_) : std::nullopt);
    EXPECT_EQ(response.body, given.inMemory);
    EXPECT_TRUE(response.error || received.done == (replaced ? given.file.size() : 0)) << received.done;
    expectStored(given.file);
  }
}

TEST_F(StreamTest, downloadsAreNotBoundedButErrorsAre) {
  const std::string body(3 << 20, 'x');
  const FaultServer server([&](Connection& client) {
    if (!client.handshake()) return;
    const bool fails = client.readRequest().starts_with("GET /fails");
    client.send(answerOf(body, "", fails ? "500 Oops" : "200 OK"));
  });
  auto small = options();
  small.maximumBodySize = 1 << 20;
  EXPECT_EQ(errorKind(perform(download(server.url("/fails")), small).response), Kind::answerTooLarge);
  EXPECT_FALSE(fs::exists(destination_));
  EXPECT_EQ(told(perform(download(server.url()), small).response), "");
  expectStored(body);

  // A disk that is full in the middle.
  rlimit before{};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
  const rlimit narrow{2 << 20, before.rlim_max};
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &narrow), 0);
  const auto full = perform(download(server.url())).response;
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &before), 0);
  std::signal(SIGXFSZ, handler);
  EXPECT_EQ(told(full), "a file failed: File too large");
  expectStored(body);
}

TEST_F(StreamTest, whatProgressThrowsEndsTheCallAndItsTransfer) {
  const FaultServer server(
      FaultServer::answeringOnce("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n12345", &Connection::stall));
  const auto shared = transport();
  root_.write("destination", "old");
  for (const bool cancels : {false, true}) {
    auto request = download(server.url());
    int calls = 0;
    Call call;
    request.progress.received = [&](std::uint64_t, std::optional<std::uint64_t>) {
      ++calls;
      EXPECT_FALSE(call->done());
      if (!cancels) throw std::runtime_error("enough");
      call->cancel.emit(boost::asio::cancellation_type::total);
    };
    call = start(shared->perform(std::move(request)));
    runner.drain();
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(call->wasCancelled(), cancels);
    if (!cancels) {
      EXPECT_THROW(call->result(), std::runtime_error);
    }
    expectStored("old");
  }
}

}  // namespace
}  // namespace ZAK::Tests
