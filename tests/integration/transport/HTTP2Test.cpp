#include "TransportFixture.hpp"

#include <zvapikit/http/HTTPClient.hpp>
#include <zvapikit/http/ManualClock.hpp>

#include <boost/asio/detached.hpp>

#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace ZAK::test {
namespace {

namespace fs = std::filesystem;

/// A port that nothing listens on now.
int freePort() {
  const TestAuthority authority;
  const FaultServer server(authority.issue(), [](FaultServer::Connection&) {});
  return server.port();
}

/// nginx, which answers with the serial number of the connection and allows 128 streams on each. After so many requests
/// on a connection it ends that by GOAWAY.
class Nginx {
 public:
  Nginx(const TestAuthority& authority, int requestsPerConnection) {
    fs::create_directories(folder_);
    authority.issue().write(folder_ / "server.pem");
    std::ofstream(folder_ / "nginx.conf")
        << "daemon off; master_process off; pid " << folder_.string() << "/pid; error_log /dev/null;\n"
        << "events { worker_connections 512; }\n"
        << "http { log_format line '$request_method $request_uri'; access_log " << folder_.string() << "/log line;\n"
        << "  keepalive_requests " << requestsPerConnection << "; client_body_temp_path " << folder_.string() << "/a;\n"
        << "  proxy_temp_path " << folder_.string() << "/b; fastcgi_temp_path " << folder_.string() << "/c;\n"
        << "  uwsgi_temp_path " << folder_.string() << "/d; scgi_temp_path " << folder_.string() << "/e;\n"
        << "  server { listen 127.0.0.1:" << port_ << " ssl http2; http2_max_concurrent_streams 128;\n"
        << "    ssl_certificate " << folder_.string() << "/server.pem;\n"
        << "    ssl_certificate_key " << folder_.string() << "/server.pem;\n"
        << "    location / { return 200 $connection; } } }\n";
    const std::string configuration = (folder_ / "nginx.conf").string();
    const char* const arguments[] = {"nginx", "-c", configuration.c_str(), "-e", "stderr", nullptr};
    // Were it to inherit the output, whoever reads that would wait for it too.
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    ::posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    ::posix_spawn(&process_, path, &actions, nullptr, const_cast<char* const*>(arguments), environ);
    ::posix_spawn_file_actions_destroy(&actions);
  }
  ~Nginx() {
    stop();
    fs::remove_all(folder_);
  }
  Nginx(const Nginx&) = delete;
  Nginx& operator=(const Nginx&) = delete;

  [[nodiscard]] std::string url() const { return "https://127.0.0.1:" + std::to_string(port_) + '/'; }

  /// Ends the server; yields method and path of each request that it served.
  std::multiset<std::string> stop() {
    if (process_ > 0) {
      ::kill(process_, SIGTERM);
      ::waitpid(std::exchange(process_, 0), nullptr, 0);
    }
    std::multiset<std::string> lines;
    std::ifstream log(folder_ / "log");
    for (std::string line; std::getline(log, line);) lines.insert(line);
    return lines;
  }

  static constexpr const char* path = "/usr/sbin/nginx";

 private:
  fs::path folder_ = fs::temp_directory_path() / ("zvapikit-nginx-" + std::to_string(::getpid()));
  int port_ = freePort();
  pid_t process_ = 0;
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
    nginx_.emplace(authority(), requestsPerConnection);
    for (int i = 0; i < 500 && perform(get(nginx_->url())).response.error; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
  }

  /// Makes that many calls at once on a new transport; yields the serial numbers of the connections used.
  std::set<std::string> connectionsOf(int calls) {
    const auto shared = transport();
    std::vector<std::shared_ptr<Outcome>> outcomes;
    for (int i = 0; i < calls; ++i) outcomes.push_back(start(shared->perform(get(nginx_->url()))));
    EXPECT_TRUE(runDry());
    std::set<std::string> connections;
    for (const auto& outcome : outcomes) {
      EXPECT_EQ(outcome->result->response.metrics.protocol, "HTTP/2");
      connections.insert(outcome->result->response.body);
    }
    return connections;
  }

  std::optional<Nginx> nginx_;
};

TEST_F(HTTP2Test, coldCallsShareConnections) {
  serve(1000);
  EXPECT_EQ(connectionsOf(64).size(), 1U);
  EXPECT_LE(connectionsOf(500).size(), 6U);
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
      boost::asio::co_spawn(*io, callInTurn(client, method, urls, ended), boost::asio::detached);
    }
    ASSERT_TRUE(runDry());
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
    EXPECT_EQ(response.error->kind(), HTTPError::Kind::connectionLost);
    EXPECT_EQ(response.error->description(), "connection lost");
    EXPECT_FALSE(response.hasAnswer());
  }
  for (const char* method : {"GET", "PUT", "POST"}) {
    EXPECT_GT(connections[method].size(), 6U) << "no more than the pool holds: none was ended";
  }
}

}  // namespace
}  // namespace ZAK::test
