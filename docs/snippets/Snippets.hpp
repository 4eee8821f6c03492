#pragma once

#include <zvapikit/core/Context.hpp>
#include <zvapikit/core/FirebaseAuthentifier.hpp>
#include <zvapikit/core/MobileApiClient.hpp>
#include <zvapikit/emulator/EmulatorThread.hpp>
#include <zvapikit/keychain/InMemoryKeychain.hpp>

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>

#include <exception>
#include <memory>
#include <stdexcept>
#include <string>

// What the pieces of code in this folder stand on. Each page of the guide has a source of its name, with one function
// that runs its code against an emulator and throws when that does not do what the page says.

void setup();
void signIn();
void errors();
void requests();
void transfers();
void threads();
void testing();
void logging();
void deployment();

/// A user who is signed in at the host's.
class Alice : public ZAK::FirebaseAuthentifier {
 public:
  boost::asio::awaitable<std::string> idToken() override { co_return "firebase-alice"; }
  void signOut() noexcept override {}
};

/// A context for an emulator.
inline ZAK::Context contextFor(const ZAK::EmulatorThread& backend, boost::asio::io_context& io,
                               const std::shared_ptr<ZAK::FirebaseAuthentifier>& authentifier) {
  return {.configuration = {ZAK::Configuration::Environment::sandbox},
          .deviceInfo = ZAK::DeviceInfo("Linux", "6.1", "device-1"),
          .authentifier = authentifier,
          .executor = io.get_executor(),
          .transport = backend->transportOptions(),
          .keychain = std::make_shared<ZAK::InMemoryKeychain>()};
}

/// Runs a coroutine to its end; throws what it throws.
inline void run(boost::asio::io_context& io, boost::asio::awaitable<void> work) {
  boost::asio::co_spawn(io, std::move(work), [](std::exception_ptr failure) {
    if (failure) std::rethrow_exception(failure);
  });
  io.run();
  io.restart();
}

inline void require(bool condition, const char* what) {
  if (!condition) throw std::logic_error(what);
}
