#include "Catalogue.hpp"
#include "Commands.hpp"
#include "Console.hpp"
#include "GivenToken.hpp"
#include "Run.hpp"

#include <zvapikit/core/Context.hpp>
#include <zvapikit/core/Info.hpp>
#include <zvapikit/core/MobileApiClient.hpp>
#include <zvapikit/core/ZAKError.hpp>
#include <zvapikit/keychain/KeychainFactory.hpp>

#include <boost/asio/io_context.hpp>
#include <nlohmann/json.hpp>

#include <charconv>
#include <iostream>

namespace zvkit {
namespace {

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
      line +=
          (line.ends_with('(') ? "" : ", ") + argument.name + (argument.mayBeLeftOut ? "?: " : ": ") + argument.type;
    }
    printResult(line + ")");
  }
  return 0;
}

int call(const CallOptions& options) {
  keepStandardOutputForResults();
  const nlohmann::json arguments = parseArguments(options.arguments);
  const Operation& operation = find(options.operation, arguments);

  boost::asio::io_context io(1);
  const auto logger = std::make_shared<ConsoleLogger>();
  const auto firebase = std::make_shared<GivenToken>(options.firebaseToken.value_or(""));
  ZAK::Context context = makeContext(options, io.get_executor());
  if (options.verbose) context.logger = logger;
  context.authentifier = firebase;
  const auto client = ZAK::MobileApiClient::create(std::move(context));

  ProgressLine progress(stderr, options.verbose);
  std::string result;
  try {
    result = runInterruptibly(io, operation.call(client, arguments, progress.add()));
  } catch (const ZAK::ZAKError& error) {
    const bool isUnsigned = error.errorDto() && error.errorDto()->statusCode == 401 && !options.firebaseToken;
    if (isUnsigned) std::cerr << "No token is stored: give one to sign in with, --firebase-token\n";
    throw;
  }
  progress.finish();
  if (!result.empty()) printResult(result);
  return 0;
}

}  // namespace zvkit
