#include "TransportFixture.hpp"
#include "support/ChildProcess.hpp"
#include "support/TemporaryDirectory.hpp"

#include <fstream>
#include <random>

namespace ZAK::Tests {
namespace {

namespace fs = std::filesystem;
using std::chrono::microseconds;

/// The most memory that the process has had resident so far, in bytes.
std::size_t peakMemory() {
  std::ifstream status("/proc/self/status");
  std::string word;
  while (status >> word && word != "VmHWM:") {
  }
  std::size_t kilobytes = 0;
  status >> kilobytes;
  return kilobytes << 10;
}

class StreamProcessTest : public TransportFixture {
 protected:
  TransferRequest download(int port, const std::string& path) const {
    // By number, so that no child needs a thread to look up a name.
    auto request = get("https://127.0.0.1:" + std::to_string(port) + path);
    request.destination = destination_;
    return request;
  }

  TemporaryDirectory root_;
  fs::path destination_ = root_.path() / "destination";
};

TEST_F(StreamProcessTest, aDownloadKilledAtAnyMomentLeavesAWholeFile) {
  constexpr int rounds = 100;
  const std::string bodies[] = {std::string(300'000, 'a'), std::string(200'000, 'b')};
  // In a process of its own: a copy of this one, made while the server's threads run, might inherit a lock of theirs.
  static_cast<void>(authority());
  int pipe[2];
  ASSERT_EQ(::pipe(pipe), 0);
  const ChildProcess serving([&] {
    const FaultServer server([&](FaultServer::Connection& client) {
      if (!client.handshake()) return;
      for (std::string request; !(request = client.readRequest()).empty();) {
        client.send(answerOf(bodies[request.starts_with("GET /a") ? 0 : 1]));
      }
    });
    const int ours = server.port();
    return ::write(pipe[1], &ours, sizeof ours) == sizeof ours ? ::pause() : 1;
  });
  int port = 0;
  ASSERT_EQ(::read(pipe[0], &port, sizeof port), static_cast<ssize_t>(sizeof port));
  const auto stores = [&](const std::shared_ptr<Transport>& shared, bool other) {
    return perform(shared, download(port, other ? "/b" : "/a")).response.file.has_value();
  };
  const auto begin = std::chrono::steady_clock::now();
  ASSERT_EQ(ChildProcess([&] { return stores(transport(), false) ? 0 : 1; }).wait(), 0);
  const auto once = std::chrono::duration_cast<microseconds>(std::chrono::steady_clock::now() - begin);
  std::mt19937 random(1);
  std::uniform_int_distribution<useconds_t> moment(0, static_cast<useconds_t>(2 * once.count()));
  std::string before = bodies[0];
  int replaced = 0;
  for (int round = 0; round < rounds; ++round) {
    ChildProcess child([&] {
      const auto shared = transport();
      for (bool other = before == bodies[0]; stores(shared, other); other = !other) {
      }
      return 1;
    });
    ::usleep(moment(random));
    ASSERT_TRUE(child.kill()) << "it had ended before";
    std::string after = contentOf(destination_);
    ASSERT_TRUE(after == bodies[0] || after == bodies[1]) << round << ": " << after.size() << " bytes";
    replaced += after != before ? 1 : 0;
    before = std::move(after);
  }
  EXPECT_GT(replaced, 0) << "no download came to its end";
  EXPECT_LT(replaced, rounds) << "none was killed before its end";
  ASSERT_TRUE(stores(transport(), false));
  EXPECT_EQ(std::distance(fs::directory_iterator(root_.path()), {}), 1) << "the dead have left something behind";
}

TEST_F(StreamProcessTest, memoryDoesNotGrowWithTheFile) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "the sanitizers keep memory of their own";
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
  GTEST_SKIP() << "the sanitizers keep memory of their own";
#endif
#endif
  constexpr std::size_t size = 200'000'000;
  const FaultServer server([&](FaultServer::Connection& client) {
    const std::string chunk(1'000'000, 'x');
    if (!client.handshake()) return;
    const std::size_t length = client.readRequest().starts_with("PUT /large") ? size : chunk.size();
    client.send("HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: " + std::to_string(length) + "\r\n\r\n");
    for (std::size_t sent = 0; sent < length; sent += chunk.size()) client.send(chunk);
  });
  const fs::path source = root_.write("source", "");
  fs::resize_file(source, size);
  ChildProcess child([&] {
    const auto shared = transport();
    const auto exchange = [&](const std::string& path, const HTTPBody& body) {
      auto request = download(server.port(), path);
      request.method = HTTPMethod::put;
      request.body = body;
      return perform(shared, std::move(request)).response.file.has_value();
    };
    if (!exchange("/to-warm-up", HTTPBody::data("little"))) return 255;
    const std::size_t before = peakMemory();
    if (!exchange("/large", HTTPBody::file(source)) || fs::file_size(destination_) != size) return 255;
    return static_cast<int>(std::min<std::size_t>((peakMemory() - before) >> 20, 254));
  });
  EXPECT_LT(static_cast<unsigned>(child.wait()), 8U) << "megabytes more, or 255 when the transfer failed";
  EXPECT_GT(server.bytes(), size);
}

}  // namespace
}  // namespace ZAK::Tests
