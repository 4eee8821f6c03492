#include "Snippets.hpp"

#include <zvapikit/core/ZAKError.hpp>
#include <zvapikit/domains/ProfileDomain.hpp>

namespace {

boost::asio::awaitable<std::string> takeName(ZAK::ProfileDomain profile, std::string name) {
  try {
    const ZAK::ProfileDto me = co_await profile.updateUsername(name);
    co_return "You are " + me.username + " now.";
  } catch (const ZAK::ZAKError& error) {
    if (error.errorDto() && error.errorDto()->key() == ZAK::ErrorKey::usernameNotAvailable) {
      co_return "This name is taken.";  // the server's word, and one that this host can act on
    }
    co_return "That did not work: " + error.errorDescription();
  }
}

boost::asio::awaitable<void> takeNames(ZAK::ProfileDomain profile) {
  std::string said = co_await takeName(profile, "bob");
  require(said == "This name is taken.", said.c_str());
  said = co_await takeName(profile, "alice.a");
  require(said == "You are alice.a now.", said.c_str());
}

}  // namespace

void errors() {
  ZAK::EmulatorThread backend;
  boost::asio::io_context io;
  const auto firebase = std::make_shared<Alice>();
  const auto client = ZAK::MobileApiClient::create(contextFor(backend, io, firebase));
  run(io, takeNames(ZAK::ProfileDomain(client)));
}
