// A command-line tool: calls that wait, a deadline, Ctrl-C and exit codes.
//
//     blocking_tool [SECONDS]    what the user's friends have posted today, within that time (10 s unless told)
//
// An emulator in this process stands in for the back-end.

#include <zvapikit/core/BlockingClient.hpp>
#include <zvapikit/core/Context.hpp>
#include <zvapikit/core/FirebaseAuthentifier.hpp>
#include <zvapikit/domains/FeedsDomain.hpp>
#include <zvapikit/domains/ProfileDomain.hpp>
#include <zvapikit/emulator/EmulatorThread.hpp>
#include <zvapikit/keychain/InMemoryKeychain.hpp>

#include <boost/asio/signal_set.hpp>
#include <boost/asio/steady_timer.hpp>

#include <charconv>
#include <csignal>
#include <iostream>
#include <string_view>

namespace {

// What shells expect: timeout(1) ends with 124, and a program that Ctrl-C ended with 128 + SIGINT.
enum ExitCode { done = 0, failed = 1, wrongUsage = 2, tooLate = 124, interrupted = 130 };

class Firebase : public ZAK::FirebaseAuthentifier {
 public:
  boost::asio::awaitable<std::string> idToken() override { co_return "firebase-alice"; }
  void signOut() noexcept override {}
};

void listPosts(ZAK::BlockingClient& tool, const std::stop_token& stop) {
  ZAK::ProfileDomain profiles{tool.client()};
  ZAK::FeedsDomain feeds{tool.client()};
  const ZAK::ProfileDto me = tool.run(profiles.fetch(), stop);
  const std::vector<ZAK::LegacyPostDto> posts = tool.run(feeds.fetchFriends(), stop);
  std::cout << posts.size() << " posts for " << me.username << "\n";
  for (const ZAK::LegacyPostDto& post : posts) {
    std::cout << post.user.username << ": " << post.caption.value_or("(no caption)") << "\n";
  }
}

}  // namespace

int main(int argc, char** argv) {
  int seconds = 10;
  if (argc > 1) {
    const std::string_view text = argv[1];
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), seconds);
    if (argc > 2 || error != std::errc() || end != text.data() + text.size() || seconds < 0) {
      std::cerr << "usage: blocking_tool [SECONDS]\n";
      return wrongUsage;
    }
  }

  ZAK::EmulatorThread backend;
  const auto firebase = std::make_shared<Firebase>();
  ZAK::BlockingClient tool({
      .configuration = {ZAK::Configuration::Environment::sandbox},
      .deviceInfo = ZAK::DeviceInfo("Linux", "6.1", "device-1"),
      .authentifier = firebase,
      .bundle = {.executable = "BlockingTool", .identifier = "com.example.tool"},
      .transport = backend->transportOptions(),
      .keychain = std::make_shared<ZAK::InMemoryKeychain>(),
  });

  // Both only ask for a stop, which ends the call that is waited for. They get their turn while `run` runs.
  std::stop_source stop;
  ExitCode reason = failed;
  const auto end = [&](ExitCode why) {
    return [&stop, &reason, why](boost::system::error_code error, auto...) {
      if (error) return;
      reason = why;
      stop.request_stop();
    };
  };
  boost::asio::signal_set signals(tool.executor(), SIGINT, SIGTERM);
  signals.async_wait(end(interrupted));
  boost::asio::steady_timer deadline(tool.executor(), std::chrono::seconds(seconds));
  deadline.async_wait(end(tooLate));

  try {
    listPosts(tool, stop.get_token());
    return done;
  } catch (const boost::system::system_error& error) {
    const bool wasStopped = stop.stop_requested() && error.code() == boost::asio::error::operation_aborted;
    std::cerr << (wasStopped ? "stopped before it was done" : error.what()) << "\n";
    return wasStopped ? reason : failed;
  } catch (const std::exception& error) {
    std::cerr << error.what() << "\n";
    return failed;
  }
}
