#include "Commands.hpp"
#include "Console.hpp"

#include <zvapikit/emulator/Emulator.hpp>

#include <boost/asio/io_context.hpp>
#include <boost/asio/signal_set.hpp>

#include <csignal>

namespace zvkit {

int serve(const EmulatorCommandOptions& options) {
  boost::asio::io_context io(1);
  ZAK::EmulatorOptions settings;
  settings.port = options.port;
  const auto emulator = ZAK::Emulator::start(io.get_executor(), settings);

  const std::string address = "127.0.0.1:" + std::to_string(emulator->port());
  printResult("Serving every host of the back-end at " + address);
  printResult("Authority: " + emulator->caFile().string());
  printResult("Users: the Firebase token firebase-alice signs alice in, and so on");
  printResult("");
  printResult("Point a host at it with TransportOptions{.caFile = \"" + emulator->caFile().string() +
              "\", .connectTo = {{\"\", 0, \"127.0.0.1\", " + std::to_string(emulator->port()) + "}}}, or:");
  printResult(
      "  zvkit call content.post '{\"for\": \"post-bob\"}' --firebase-token firebase-alice --keychain memory "
      "--connect-to " +
      address + " --ca-file " + emulator->caFile().string());
  printResult("");
  printResult("Stop with Ctrl-C.");

  boost::asio::signal_set signals(io, SIGINT, SIGTERM);
  signals.async_wait([&](boost::system::error_code error, int) {
    if (!error) emulator->stop();
  });
  io.run();
  return 0;
}

}  // namespace zvkit
