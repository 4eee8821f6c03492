// The kit's log lines in spdlog (https://github.com/gabime/spdlog), as a host would have them: in its own format, at
// its own levels, written by a thread of spdlog's.

#include <zvapikit/core/BlockingClient.hpp>
#include <zvapikit/core/Context.hpp>
#include <zvapikit/core/FirebaseAuthentifier.hpp>
#include <zvapikit/core/LoggerDelegate.hpp>
#include <zvapikit/core/ZAKError.hpp>
#include <zvapikit/domains/ContentDomain.hpp>
#include <zvapikit/emulator/EmulatorThread.hpp>
#include <zvapikit/keychain/InMemoryKeychain.hpp>

#include <iostream>
#include <spdlog/async_logger.h>
#include <spdlog/details/thread_pool.h>
#include <spdlog/sinks/ostream_sink.h>
#include <sstream>
#include <stdexcept>

namespace {

// The kit calls this from any thread that runs the client's executor, from several at once, so no member may change;
// spdlog's loggers are made for that as long as their sinks end in `_mt`. What it throws is swallowed.
class SpdlogLogger : public ZAK::LoggerDelegate {
 public:
  explicit SpdlogLogger(std::shared_ptr<spdlog::logger> logger) : logger_(std::move(logger)) {}

  // Texts hold what a server sent: they are arguments, never the format.
  void message(std::string_view text, std::optional<std::string_view>) override { logger_->debug("{}", text); }
  void warning(std::string_view text) override { logger_->warn("{}", text); }
  // The text tells the reason already; the error itself is for hosts that sort failures by their type.
  void error(std::string_view text, const std::exception*) override { logger_->error("{}", text); }

 private:
  std::shared_ptr<spdlog::logger> logger_;
};

// Asynchronous, because the kit must not be held up: the caller copies its line into a queue, and one thread writes.
// When that falls behind the oldest lines go (`overrun_oldest`), where `block` would have the executor wait. What is
// lost in a crash is the queue; a tool that wants every line and has the time takes a plain `spdlog::logger`.
std::shared_ptr<spdlog::logger> makeLogger(const spdlog::sink_ptr& sink,
                                           const std::shared_ptr<spdlog::details::thread_pool>& writer) {
  const auto logger =
      std::make_shared<spdlog::async_logger>("zak", sink, writer, spdlog::async_overflow_policy::overrun_oldest);
  logger->set_pattern("%L %n %v");          // a host would add the time: "%H:%M:%S.%e"
  logger->set_level(spdlog::level::debug);  // `info` leaves out the line that each request writes
  logger->flush_on(spdlog::level::err);
  return logger;
}

class Firebase : public ZAK::FirebaseAuthentifier {
 public:
  boost::asio::awaitable<std::string> idToken() override { co_return "firebase-alice"; }
  void signOut() noexcept override {}
};

}  // namespace

int main() {
  std::ostringstream lines;  // where a host would name a file: spdlog::sinks::rotating_file_sink_mt
  auto writer = std::make_shared<spdlog::details::thread_pool>(8192, 1);
  const auto logger =
      std::make_shared<SpdlogLogger>(makeLogger(std::make_shared<spdlog::sinks::ostream_sink_mt>(lines), writer));

  ZAK::EmulatorThread backend;
  const auto firebase = std::make_shared<Firebase>();
  ZAK::BlockingClient tool({
      .configuration = {ZAK::Configuration::Environment::sandbox},
      .authentifier = firebase,
      .logger = logger,  // held weakly: no log? Look whether the host still has it
      .transport = backend->transportOptions(),
      .keychain = std::make_shared<ZAK::InMemoryKeychain>(),
      .redactsSecrets = true,  // else a bearer that was rejected stands in the log
  });
  ZAK::ContentDomain content{tool.client()};
  for (const char* postId : {"post-bob", "post-bob", "post-nobody"}) {
    try {
      tool.run(content.post(ZAK::PostId(postId)));
    } catch (const ZAK::ZAKError&) {  // has been logged
    }
    backend->expireTokens();  // so that the next call is rejected first
  }

  writer.reset();  // ends the thread once it has written all; hosts on spdlog's own pool call spdlog::shutdown()
  const std::string log = lines.str();
  std::cout << log;
  for (const char* line : {"D zak [ZAK] request : GET /content/posts/post-bob", "W zak [LoginValidator]",
                           "bearer: <redacted>", "E zak [ZAK] request : GET /content/posts/post-nobody"}) {
    if (log.find(line) == std::string::npos) throw std::runtime_error(std::string("not logged: ") + line);
  }
  if (log.find("access-") != std::string::npos) throw std::runtime_error("a token was logged");
  std::cout << "all lines are there, and no token\n";
}
