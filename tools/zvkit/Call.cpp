#include "Catalogue.hpp"
#include "Commands.hpp"
#include "Console.hpp"

#include <zvapikit/core/Context.hpp>
#include <zvapikit/core/FirebaseAuthentifier.hpp>
#include <zvapikit/core/Info.hpp>
#include <zvapikit/core/MobileApiClient.hpp>
#include <zvapikit/keychain/KeychainFactory.hpp>

#include <boost/asio/bind_cancellation_slot.hpp>
#include <boost/asio/cancellation_signal.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/signal_set.hpp>
#include <nlohmann/json.hpp>

#include <charconv>

namespace zvkit {
namespace {

/// Signs in with a token from the command line.
class GivenToken final : public ZAK::FirebaseAuthentifier {
 public:
  explicit GivenToken(std::string token) : token_(std::move(token)) {}

  boost::asio::awaitable<std::string> idToken() override { return yield(token_); }
  void signOut() noexcept override {}

 private:
  static boost::asio::awaitable<std::string> yield(std::string token) { co_return token; }

  std::string token_;
};

ZAK::TransportOptions::ConnectTo parseConnectTo(const std::string& text) {
  const auto colon = text.rfind(':');
  int port = 0;
  const char* end = text.data() + text.size();
  if (colon == std::string::npos || colon == 0 || std::from_chars(text.data() + colon + 1, end, port).ptr != end ||
      port < 1 || port > 65535) {
    throw UsageError("--connect-to takes HOST:PORT, not \"" + text + "\"");
  }
  return {"", 0, text.substr(0, colon), port};
}

nlohmann::json parseArguments(const std::string& text) {
  try {
    return nlohmann::json::parse(text);
  } catch (const nlohmann::json::exception& error) {
    throw UsageError(std::string("the arguments are not JSON: ") + error.what());
  }
}

std::shared_ptr<ZAK::Keychain> makeKeychain(const std::string& name) {
  using Backend = ZAK::KeychainFactory::Backend;
  if (name == "memory") return ZAK::KeychainFactory::make(Backend::memory);
  if (name == "file") return ZAK::KeychainFactory::make(Backend::file);
  if (name == "secret-service") return ZAK::KeychainFactory::make(Backend::secretService);
  return ZAK::KeychainFactory::shared();
}

ZAK::Context makeContext(const CallOptions& options, boost::asio::any_io_executor executor) {
  ZAK::Context context;
  context.configuration.environment = *ZAK::fromRawValue<ZAK::Configuration::Environment>(options.environment);
  context.deviceInfo = ZAK::DeviceInfo("Linux", "1", "zvkit");
  context.bundle = {.executable = "zvkit",
                    .shortVersion = std::string(ZAK::Info::version()),
                    .identifier = "com.zolvi.zvkit",
                    .version = "1"};
  context.executor = std::move(executor);
  if (!options.connectTo.empty()) context.transport.connectTo.push_back(parseConnectTo(options.connectTo));
  if (!options.caFile.empty()) context.transport.caFile = options.caFile;
  context.keychain = makeKeychain(options.keychain);
  return context;
}

}  // namespace

int list() {
  for (const Operation& operation : catalogue()) {
    std::string line = operation.fullName() + "(";
    for (const Argument& argument : operation.arguments) {
      line += (line.ends_with('(') ? "" : ", ") + argument.name + ": " + argument.type;
    }
    printResult(line + ")");
  }
  return 0;
}

int call(const CallOptions& options) {
  keepStandardOutputForResults();
  const Operation& operation = find(options.operation);
  const nlohmann::json arguments = parseArguments(options.arguments);

  boost::asio::io_context io(1);
  const auto logger = std::make_shared<ConsoleLogger>();
  const auto firebase = options.firebaseToken ? std::make_shared<GivenToken>(*options.firebaseToken) : nullptr;
  ZAK::Context context = makeContext(options, io.get_executor());
  if (options.verbose) context.logger = logger;
  context.authentifier = firebase;
  const auto client = ZAK::MobileApiClient::create(std::move(context));

  int exitCode = 1;
  boost::asio::cancellation_signal interrupt;
  boost::asio::signal_set signals(io, SIGINT, SIGTERM);
  signals.async_wait([&](boost::system::error_code error, int) {
    if (!error) interrupt.emit(boost::asio::cancellation_type::terminal);
  });
  const auto finished = [&](std::exception_ptr failure, const std::string& result) {
    signals.cancel();
    if (failure) std::rethrow_exception(failure);
    if (!result.empty()) printResult(result);
    exitCode = 0;
  };
  boost::asio::co_spawn(io, operation.call(client, arguments),
                        boost::asio::bind_cancellation_slot(interrupt.slot(), finished));
  io.run();
  return exitCode;
}

}  // namespace zvkit
