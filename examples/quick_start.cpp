// The shortest useful host: signs a user in, comments on a friend's post and prints the comment as the back-end sees
// it. An emulator in this process stands in for the back-end; without it, drop the three lines that name it.

#include <zvapikit/core/Context.hpp>
#include <zvapikit/core/FirebaseAuthentifier.hpp>
#include <zvapikit/core/MobileApiClient.hpp>
#include <zvapikit/domains/ContentDomain.hpp>
#include <zvapikit/emulator/EmulatorThread.hpp>
#include <zvapikit/keychain/InMemoryKeychain.hpp>

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>

#include <iostream>

namespace {

// Where the ID token comes from is the host's business: usually the Firebase SDK.
class Firebase : public ZAK::FirebaseAuthentifier {
 public:
  boost::asio::awaitable<std::string> idToken() override { co_return "firebase-alice"; }
  void signOut() noexcept override {}
};

boost::asio::awaitable<void> comment(std::shared_ptr<ZAK::MobileApiClient> client) {
  ZAK::ContentDomain content{client};
  const ZAK::PostCommentDto comment =
      co_await content.addComment("Nice view!", ZAK::PostId("post-bob"), ZAK::UserId("bob"));
  std::cout << comment.user.username << ": " << comment.content << "\n";
}

void rethrow(std::exception_ptr failure) {
  if (failure) std::rethrow_exception(failure);
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
      .bundle = {.executable = "QuickStart", .identifier = "com.example.quickstart"},
      .transport = backend->transportOptions(),
      .keychain = std::make_shared<ZAK::InMemoryKeychain>(),
  });
  boost::asio::co_spawn(io, comment(client), rethrow);
  io.run();
}
