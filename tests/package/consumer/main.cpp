// A host of the kit as somebody else would write it, with one call for each thing that crosses the border between
// library and host.

#include <zvapikit/core/Context.hpp>
#include <zvapikit/core/EmptyDto.hpp>
#include <zvapikit/core/FirebaseAuthentifier.hpp>
#include <zvapikit/core/MobileApiClient.hpp>
#include <zvapikit/core/ZAKError.hpp>
#include <zvapikit/domains/FeedsDomain.hpp>
#include <zvapikit/domains/ProfileDomain.hpp>
#include <zvapikit/emulator/EmulatorThread.hpp>
#include <zvapikit/keychain/InMemoryKeychain.hpp>

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>

#include <iostream>
#include <stdexcept>

namespace {

class Firebase : public ZAK::FirebaseAuthentifier {
 public:
  boost::asio::awaitable<std::string> idToken() override { co_return "firebase-alice"; }
  void signOut() noexcept override {}
};

// A record that the kit does not know.
struct Account {
  std::string username;
  std::optional<std::string> fullname;
  static constexpr auto jsonFields() {
    return std::array{ZAK::JSONField::of<&Account::username>("username"),
                      ZAK::JSONField::of<&Account::fullname>("fullname")};
  }
};

void require(bool holds, const char* what) {
  std::cout << (holds ? "yes: " : "NO: ") << what << "\n";
  if (!holds) throw std::runtime_error(what);
}

boost::asio::awaitable<void> use(std::shared_ptr<ZAK::MobileApiClient> client) {
  ZAK::FeedsDomain feeds{client};
  const auto posts = co_await feeds.fetchFriends();
  require(!posts.empty(), "an operation yields records");

  const Account account = co_await client->fire<Account>(ZAK::HTTPRequest(ZAK::HTTPMethod::get, "/person/me"), true);
  require(account.username == "alice", "a record of the host's own is decoded");

  // The emulator answers with no byte, which the library accepts for EmptyDto only.
  co_await client->fire<ZAK::EmptyDto>(ZAK::HTTPRequest(ZAK::HTTPMethod::put, "/nothing"), true);
  require(true, "the library knows the host's EmptyDto");
  bool missed = false;
  try {
    (void)co_await client->fire<Account>(ZAK::HTTPRequest(ZAK::HTTPMethod::put, "/nothing"), true);
  } catch (const ZAK::ZAKError& error) {
    missed = error.underlyingError() && error.underlyingError()->kind() == ZAK::HTTPError::Kind::emptyResponse;
  }
  require(missed, "no byte is no record");

  ZAK::ProfileDomain profile{client};
  bool refused = false;
  try {
    (void)co_await profile.updateUsername("bob");
  } catch (const ZAK::ZAKError& error) {
    refused = error.errorDto() && error.errorDto()->key() == ZAK::ErrorKey::usernameNotAvailable;
  }
  require(refused, "an error of the library is caught by its type");
}

}  // namespace

int main() {
  ZAK::EmulatorThread backend;
  backend->inject({.server = ZAK::EmulatorServer::mobile,
                   .path = "/nothing",
                   .times = ZAK::EmulatorFault::always,
                   .answer = ZAK::EmulatorResponse{200, ""}});

  boost::asio::io_context io;
  const auto firebase = std::make_shared<Firebase>();
  const auto client = ZAK::MobileApiClient::create({
      .configuration = {ZAK::Configuration::Environment::sandbox},
      .deviceInfo = ZAK::DeviceInfo("Linux", "6.1", "device-1"),
      .authentifier = firebase,
      .executor = io.get_executor(),
      .bundle = {.executable = "Consumer", .identifier = "com.example.consumer"},
      .transport = backend->transportOptions(),
      .keychain = std::make_shared<ZAK::InMemoryKeychain>(),
  });
  int result = 1;
  boost::asio::co_spawn(io, use(client), [&result](std::exception_ptr failure) {
    result = failure ? 1 : 0;
    if (failure) std::rethrow_exception(failure);
  });
  io.run();
  return result;
}
