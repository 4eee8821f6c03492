#include "TransportFixture.hpp"

#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <set>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace ZAK::test {
namespace {

namespace fs = std::filesystem;

/// A port that nothing listens on now.
int freePort() {
  const TestAuthority authority;
  const FaultServer server(authority.issue(), [](FaultServer::Connection&) {});
  return server.port();
}

/// nginx, which answers with the serial number of the connection and allows 128 streams on each.
class Nginx {
 public:
  explicit Nginx(const TestAuthority& authority) {
    fs::create_directories(folder_);
    authority.issue().write(folder_ / "server.pem");
    std::ofstream(folder_ / "nginx.conf")
        << "daemon off; master_process off; pid " << folder_.string() << "/pid; error_log /dev/null;\n"
        << "events { worker_connections 512; }\n"
        << "http { access_log off; client_body_temp_path " << folder_.string() << "/a;\n"
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
    if (process_ > 0) {
      ::kill(process_, SIGTERM);
      ::waitpid(process_, nullptr, 0);
    }
    fs::remove_all(folder_);
  }
  Nginx(const Nginx&) = delete;
  Nginx& operator=(const Nginx&) = delete;

  [[nodiscard]] std::string url() const { return "https://127.0.0.1:" + std::to_string(port_) + '/'; }

  static constexpr const char* path = "/usr/sbin/nginx";

 private:
  fs::path folder_ = fs::temp_directory_path() / ("zvapikit-nginx-" + std::to_string(::getpid()));
  int port_ = freePort();
  pid_t process_ = 0;
};

class HTTP2Test : public TransportFixture {
 protected:
  void SetUp() override {
    if (!fs::exists(Nginx::path)) GTEST_SKIP() << "nginx is not installed";
    nginx_.emplace(authority());
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

 private:
  std::optional<Nginx> nginx_;
};

TEST_F(HTTP2Test, coldCallsShareConnections) {
  EXPECT_EQ(connectionsOf(64).size(), 1U);
  EXPECT_LE(connectionsOf(500).size(), 6U);
}

}  // namespace
}  // namespace ZAK::test
