#include "Snippets.hpp"

#include <zvapikit/core/ZAKError.hpp>
#include <zvapikit/domains/ContentDomain.hpp>
#include <zvapikit/domains/ProfileDomain.hpp>
#include <zvapikit/json/JSONErrors.hpp>

#include <boost/asio/error.hpp>
#include <boost/system/system_error.hpp>

namespace {

boost::asio::awaitable<std::string> takeName(ZAK::ProfileDomain profile, std::string name) {
  try {
    const ZAK::ProfileDto me = co_await profile.updateUsername(name);
    co_return "You are " + me.username + " now.";
  } catch (const ZAK::ZAKError& error) {
    if (error.errorDto() && error.errorDto()->key() == ZAK::ErrorKey::usernameNotAvailable) {
      co_return "This name is taken.";  // the server's word, and one that this host can act on
    }
    if (error.underlyingError() && !error.underlyingError()->statusCode().code()) {
      co_return "No connection.";  // no answer came
    }
    co_return "Something went wrong: " + error.errorDescription();
  } catch (const ZAK::DecodingError&) {
    co_return "The server has answered what this version does not understand.";
  } catch (const boost::system::system_error& error) {
    if (error.code() != boost::asio::error::operation_aborted) throw;
    co_return "";  // cancelled: nobody waits for an answer
  }
}

boost::asio::awaitable<void> meet(std::shared_ptr<ZAK::MobileApiClient> client, ZAK::EmulatorThread* backend) {
  ZAK::ProfileDomain profile{client};
  (*backend)->inject({.path = "/person/me/username", .ending = ZAK::EmulatorFault::Ending::keepAlive});
  std::string said = co_await takeName(profile, "bob");
  require(said == "This name is taken.", said.c_str());
  (*backend)->inject({.path = "/person/me/username", .cutAfter = 0, .ending = ZAK::EmulatorFault::Ending::reset});
  said = co_await takeName(profile, "alice.a");
  require(said == "No connection.", said.c_str());
  (*backend)->inject({.path = "/person/me/username", .answer = ZAK::EmulatorResponse{200, "{}"}});
  said = co_await takeName(profile, "alice.a");
  require(said.starts_with("The server has answered"), said.c_str());
}

}  // namespace

void errors() {
  ZAK::EmulatorThread backend;
  boost::asio::io_context io;
  const auto alice = std::make_shared<Alice>();
  const auto client = ZAK::MobileApiClient::create(contextFor(backend, io, alice));
  run(io, meet(client, &backend));
}
