#include "Replay.hpp"

#include <zvapikit/http/HTTPClient.hpp>

#include <memory>
#include <mutex>
#include <string>

namespace ZAK::Test {
namespace {

using test::FaultServer;

constexpr int redirects[] = {301, 302, 303, 307, 308};

awaitable<void> fetch(std::shared_ptr<HTTPClient> client, HTTPRequest request, std::shared_ptr<HTTPResponse> response) {
  *response = co_await client->fetch(std::move(request));
}

TEST(Redirects, TakeNoHeaderOfABareDownloadToAnotherOrigin) {
  std::mutex mutex;  // the servers have threads of their own
  std::string location;
  std::string arrived;
  const FaultServer::Script script = [&](FaultServer::Connection& connection) {
    if (!connection.handshake()) return;
    const std::string request = connection.readRequest();
    const std::lock_guard lock(mutex);
    if (!request.starts_with("GET /start/")) {
      arrived = request;
      return connection.send("HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nthere");
    }
    const std::string status = request.substr(11, 3);
    connection.send("HTTP/1.1 " + status + " Moved\r\nLocation: " + location + "\r\nContent-Length: 0\r\n\r\n");
  };
  const FaultServer server(authority().issue(), script);
  const FaultServer other(authority().issue(), script);
  Kit kit;
  Context context = kit.context();
  context.transport = TransportOptions();
  context.transport.caFile = authority().file();
  const auto client = MobileApiClient::create(std::move(context))->buildRaw();

  const std::string plain = "http://localhost:" + std::to_string(other.port()) + "/there";
  for (const std::string& target : {server.url("/there", "127.0.0.1"), other.url("/there"), plain}) {
    for (const int status : redirects) {
      SCOPED_TRACE(target + ' ' + std::to_string(status));
      {
        const std::lock_guard lock(mutex);
        location = target;
        arrived.clear();
      }
      HTTPRequest request(HTTPMethod::get, server.url("/start/" + std::to_string(status)));
      request.headers.set(HTTPHeaders::Element::bearer("access-canary"));
      request.headers.set({"X-Device", "device-1"});
      const auto response = std::make_shared<HTTPResponse>();
      EXPECT_EQ(kit.outcomeOf(fetch(client, std::move(request), response)), "ok");
      const std::lock_guard lock(mutex);
      if (target == plain) {
        ASSERT_TRUE(response->error);
        EXPECT_EQ(response->error->description(), "redirected to an address that is not https");
        EXPECT_EQ(arrived, "");
      } else {
        EXPECT_EQ(response->body, "there");
        const std::string host = target.substr(8, target.find("/there") - 8);
        EXPECT_EQ(arrived, "GET /there HTTP/1.1\r\nHost: " + host + "\r\n\r\n");
      }
    }
  }
  EXPECT_EQ(server.requests(), 4 * 5) << "each start, and what was sent to the same port under another name";
  EXPECT_EQ(other.connections(), 5) << "nothing was tried without TLS";
}

TEST(Redirects, AreAnswersToTheApiClientAndToUploads) {
  Kit kit;
  kit.signIn();
  for (const int status : redirects) {
    SCOPED_TRACE(status);
    kit.emulator->inject(
        {.times = 2,
         .answer = EmulatorResponse{status, "", {{"Location", "https://storage.zolvi.example/zolvi-photos-dev/x"}}}});
    const std::string described = HTTPError::unsuccessful(HTTPStatusCode(status)).description();
    EXPECT_EQ(kit.outcomeOf(kit.reading()), "httpError: " + described);
    HTTPRequest request(HTTPMethod::put, "https://storage.zolvi.example/zolvi-photos-dev/y");
    request.body = HTTPBody::data("picture");
    const auto response = std::make_shared<HTTPResponse>();
    EXPECT_EQ(kit.outcomeOf(fetch(kit.client->buildRaw(), std::move(request), response)), "ok");
    ASSERT_TRUE(response->error);
    EXPECT_EQ(response->error->description(), described);
    EXPECT_EQ(kit.requests().size(), 2u) << "and none to where they point";
  }
}

}  // namespace
}  // namespace ZAK::Test
