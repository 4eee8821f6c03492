// For hosts without coroutines: callbacks and futures. The kit runs in a thread of its own here, as in an app whose
// main thread draws the user interface. An emulator in this process stands in for the back-end.

#include <zvapikit/core/Context.hpp>
#include <zvapikit/core/FirebaseAuthentifier.hpp>
#include <zvapikit/core/MobileApiClient.hpp>
#include <zvapikit/domains/ContentDomain.hpp>
#include <zvapikit/domains/FeedsDomain.hpp>
#include <zvapikit/domains/ProfileDomain.hpp>
#include <zvapikit/emulator/EmulatorThread.hpp>
#include <zvapikit/keychain/InMemoryKeychain.hpp>

#include <boost/asio/bind_cancellation_slot.hpp>
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/experimental/awaitable_operators.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/use_future.hpp>

#include <future>
#include <iostream>
#include <thread>

namespace {

using Client = std::shared_ptr<ZAK::MobileApiClient>;
using Posts = std::vector<ZAK::LegacyPostDto>;

class Firebase : public ZAK::FirebaseAuthentifier {
 public:
  boost::asio::awaitable<std::string> idToken() override { co_return "firebase-alice"; }
  void signOut() noexcept override {}
};

// A callback gets one Outcome: the result, or what went wrong. It runs in the kit's thread, so it must not wait for
// anything; the next call is simply started from it. `done` tells the main thread that all is over.
void commentOnTheFirstPost(const Client& client, std::promise<void>& done) {
  ZAK::FeedsDomain feeds{client};
  client->spawn(feeds.fetchFriends(), [client, &done](ZAK::Outcome<Posts> posts) {
    if (!posts.has_value()) return done.set_exception(posts.error());
    if (posts.value().empty()) return done.set_value();
    const ZAK::LegacyPostDto& first = posts.value().front();

    ZAK::ContentDomain content{client};
    client->spawn(content.addComment("First!", ZAK::PostId(first.id), ZAK::UserId(first.user.id)),
                  [&done](ZAK::Outcome<ZAK::PostCommentDto> comment) {
                    if (!comment.has_value()) return done.set_exception(comment.error());
                    std::cout << "commented: " << comment.value().content << "\n";
                    done.set_value();
                  });
  });
}

// With use_future a call yields a std::future. Both calls are under way before the first is waited for; get() throws
// what the call threw. Never wait for a future in the thread that runs the kit: nothing would ever come.
void twoFutures(const Client& client) {
  ZAK::ProfileDomain profiles{client};
  ZAK::FeedsDomain feeds{client};
  std::future<ZAK::ProfileDto> profile = client->spawn(profiles.fetch(), boost::asio::use_future);
  std::future<Posts> posts = client->spawn(feeds.fetchFriends(), boost::asio::use_future);
  std::cout << "futures: " << profile.get().username << " has " << posts.get().size() << " posts to see\n";
}

// Two calls at once are shortest in a small coroutine: `&&` waits for both, and cancels the other one when one fails.
boost::asio::awaitable<std::string> greeting(Client client) {
  using namespace boost::asio::experimental::awaitable_operators;
  ZAK::ProfileDomain profiles{client};
  ZAK::FeedsDomain feeds{client};
  const auto [profile, posts] = co_await (profiles.fetch() && feeds.fetchFriends());
  co_return profile.username + " has " + std::to_string(posts.size()) + " posts to see";
}

// Whoever holds the signal can cancel the call, from any thread: the user leaves the screen, say. The callback is told
// so at once, as of any other failure.
void leaveTheScreen(const Client& client) {
  ZAK::FeedsDomain feeds{client};
  boost::asio::cancellation_signal leave;
  std::promise<std::exception_ptr> ended;
  client->spawn(feeds.fetchFriends(),
                boost::asio::bind_cancellation_slot(
                    leave.slot(), [&ended](const ZAK::Outcome<Posts>& posts) { ended.set_value(posts.error()); }));
  leave.emit(boost::asio::cancellation_type::terminal);
  try {
    if (const std::exception_ptr failure = ended.get_future().get()) std::rethrow_exception(failure);
  } catch (const boost::system::system_error& error) {
    if (error.code() != boost::asio::error::operation_aborted) throw;
    std::cout << "left the screen: the call was cancelled\n";
  }
}

}  // namespace

int main() {
  ZAK::EmulatorThread backend;
  boost::asio::io_context io;
  const auto firebase = std::make_shared<Firebase>();
  const auto client = ZAK::MobileApiClient::create({
      .configuration = {ZAK::Configuration::Environment::sandbox},
      .deviceInfo = ZAK::DeviceInfo("Linux", "6.1", "device-1"),
      .authentifier = firebase,
      .executor = io.get_executor(),
      .bundle = {.executable = "Callbacks", .identifier = "com.example.callbacks"},
      .transport = backend->transportOptions(),
      .keychain = std::make_shared<ZAK::InMemoryKeychain>(),
  });
  auto work = boost::asio::make_work_guard(io);  // keeps run() waiting while there is nothing to do
  const std::jthread kit([&io] { io.run(); });

  std::promise<void> done;
  commentOnTheFirstPost(client, done);
  done.get_future().get();
  twoFutures(client);
  std::cout << "both: " << client->spawn(greeting(client), boost::asio::use_future).get() << "\n";
  backend->inject({.path = "/feeds/friends", .delay = std::chrono::hours(1)});
  leaveTheScreen(client);
  work.reset();
}
