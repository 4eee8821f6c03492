#include "TransportFixture.hpp"
#include "support/ChildProcess.hpp"
#include "support/TemporaryDirectory.hpp"

#include <zvapikit/http/HTTPClient.hpp>
#include <zvapikit/http/ManualClock.hpp>

#include <boost/asio/detached.hpp>

#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <thread>
#include <vector>

namespace ZAK::Tests {
namespace {

namespace fs = std::filesystem;

/// nginx, which answers with the serial number of the connection and allows 128 streams on each. After so many requests
/// on a connection it ends that by GOAWAY.
class Nginx {
 public:
  explicit Nginx(int requestsPerConnection) {
    authority().issue().write(folder_.path() / "server.pem");
    const auto configuration = folder_.write("nginx.conf", R"(
        daemon off; master_process off; pid pid; error_log /dev/null;
        events { worker_connections 512; }
        http {
          log_format line '$request_method $request_uri'; access_log log line; client_body_temp_path a;
          proxy_temp_path b; fastcgi_temp_path c; uwsgi_temp_path d; scgi_temp_path e;
          keepalive_requests )" + std::to_string(requestsPerConnection) +
                                                               R"(;
          server {
            listen 127.0.0.1:)" + std::to_string(port_) + R"( ssl http2; http2_max_concurrent_streams 128;
            ssl_certificate server.pem; ssl_certificate_key server.pem;
            location / { return 200 $connection; }
          }
        })");
    process_.emplace([&] {
      // Were it to inherit the output, whoever reads that would wait for it too.
      const int nowhere = ::open("/dev/null", O_WRONLY);
      for (const int output : {STDOUT_FILENO, STDERR_FILENO}) ::dup2(nowhere, output);
      return ::execl(path, "nginx", "-c", configuration.c_str(), "-p", folder_.path().c_str(), "-e", "stderr", nullptr);
    });
  }

  [[nodiscard]] std::string url() const { return "https://127.0.0.1:" + std::to_string(port_) + '/'; }

  /// Ends the server; yields method and path of each request that it served.
  std::multiset<std::string> stop() {
    process_->stop();
    std::multiset<std::string> lines;
    std::ifstream log(folder_.path() / "log");
    for (std::string line; std::getline(log, line);) lines.insert(line);
    return lines;
  }

  static constexpr const char* path = "/usr/sbin/nginx";

 private:
  TemporaryDirectory folder_;
  int port_ = FaultServer([](FaultServer::Connection&) {}).port();  ///< which nothing listens on any more
  std::optional<ChildProcess> process_;
};

/// How calls ended, by method and URL.
using Responses = std::map<std::string, HTTPResponse>;

/// Makes calls one after the other.
boost::asio::awaitable<void> callInTurn(std::shared_ptr<HTTPClient> client, HTTPMethod method,
                                        std::vector<std::string> urls, std::shared_ptr<Responses> ended) {
  for (const std::string& url : urls) {
    HTTPRequest request(method, url);
    request.maxRetries = 2;
    HTTPResponse response = co_await client->fetch(std::move(request));
    ended->insert_or_assign(std::string(rawValue(method)) + ' ' + url, std::move(response));
  }
}

class HTTP2Test : public TransportFixture {
 protected:
  void SetUp() override {
    if (!fs::exists(Nginx::path)) GTEST_SKIP() << "nginx is not installed";
  }

  void serve(int requestsPerConnection) {
    nginx_.emplace(requestsPerConnection);
    for (int i = 0; i < 500 && perform(get(nginx_->url())).response.error; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
  }

  std::optional<Nginx> nginx_;
};

TEST_F(HTTP2Test, coldCallsShareAConnection) {
  serve(1000);
  const auto shared = transport();
  std::vector<Call> calls;
  for (int i = 0; i < 64; ++i) calls.push_back(start(shared->perform(get(nginx_->url()))));
  runner.drain();
  std::set<std::string> connections;
  for (const Call& call : calls) connections.insert(told(call->result().response));
  EXPECT_EQ(connections.size(), 1U);
}

TEST_F(HTTP2Test, connectionsThatTheServerEndsUnderLoadLoseNoCallAndRepeatNoPost) {
  constexpr int workers = 64;
  constexpr int callsEach = 8;
  serve(20);
  const auto ended = std::make_shared<Responses>();
  for (const auto method : {HTTPMethod::get, HTTPMethod::put, HTTPMethod::post}) {
    const auto client = HTTPClient::create(transport(), {}, std::make_shared<ManualClock>(ManualClock::autoAdvance));
    for (int worker = 0; worker < workers; ++worker) {
      std::vector<std::string> urls;
      for (int i = 0; i < callsEach; ++i) {
        urls.push_back(nginx_->url() + std::string(rawValue(method)) + std::to_string(worker * callsEach + i));
      }
      boost::asio::co_spawn(runner.context(), callInTurn(client, method, urls, ended), boost::asio::detached);
    }
    runner.drain();
  }
  ASSERT_EQ(ended->size(), 3U * workers * callsEach);
  const auto served = nginx_->stop();
  std::map<std::string, std::set<std::string>> connections;
  for (const auto& [name, response] : *ended) {
    const std::string method = name.substr(0, name.find(' '));
    const auto times = served.count(method + " /" + name.substr(name.rfind('/') + 1));
    if (!response.error) {
      EXPECT_EQ(times, 1U) << name;
      EXPECT_EQ(response.metrics.protocol, "HTTP/2");
      connections[method].insert(response.body);
      continue;
    }
    EXPECT_EQ(method, "POST") << name << " was lost";
    EXPECT_LE(times, 1U) << name << " was repeated";
    EXPECT_EQ(errorKind(response), HTTPError::Kind::connectionLost);
    EXPECT_EQ(told(response), "connection lost");
    EXPECT_FALSE(response.hasAnswer());
  }
  for (const char* method : {"GET", "PUT", "POST"}) {
    EXPECT_GT(connections[method].size(), 6U) << "no more than the pool holds: none was ended";
  }
}

}  // namespace
}  // namespace ZAK::Tests
