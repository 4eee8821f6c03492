#include "Replay.hpp"
#include <cstdio>

namespace ZAK::Test {
namespace {
using Step = NetworkFault::Step;
using Ending = NetworkFault::Ending;
using Exchange = Replay::Exchange;

std::string chunked(const std::string& body) {
  std::string text = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
  for (std::size_t at = 0; at < body.size(); at += 64) {
    const std::string part = body.substr(at, 64);
    char size[20];
    std::snprintf(size, sizeof(size), "%zx\r\n", part.size());
    text += size + part + "\r\n";
  }
  return text + "0\r\n\r\n";
}
std::string unframed(const std::string& body) { return "HTTP/1.1 200 OK\r\n\r\n" + body; }

std::string show(const Replayed& r) {
  return std::string(r.succeeded ? "ok " : "") + (r.undecodable ? "undecodable " : "") +
         (r.error ? std::to_string(int(r.error->kind())) + " " + std::to_string(r.error->statusCode().code()) + " '" + r.error->description() + "' code " + std::to_string(r.error->transportCode()) : "") + " met " + std::to_string(r.met);
}

TEST(NetworkFaults, Probe) {
  for (auto x : {Exchange::reading, Exchange::signingIn, Exchange::uploading}) {
    Replay replay(x, {.maxRetries = 1});
    if (x == Exchange::reading) std::printf("healthy %s\n", show(replay.run({Step::asked, Ending::close, answered(healthyBody(x))})).c_str());
    for (auto frame : {answered, chunked, unframed}) for (auto e : {Ending::close, Ending::drop, Ending::reset}) {
      const std::string a = frame(healthyBody(x));
      std::string last; std::size_t from = 0;
      for (std::size_t n = 0; n <= a.size() + 1; ++n) {
        std::string s = n <= a.size() ? show(replay.run({Step::asked, e, a.substr(0, n)})) : "";
        if (s != last) { if (n) std::printf("x%d %d..%d of %d ending %d: %s\n", int(x), int(from), int(n - 1), int(a.size()), int(e), last.c_str()); last = s; from = n; }
      }
    }
  }
}
}
}
