#include "Catalogue.hpp"
#include "Commands.hpp"

#include <zvapikit/core/Info.hpp>

#include <CLI/CLI.hpp>

#include <iostream>

namespace {

constexpr int usageError = 2;

struct CommandLine {
  zvkit::CallOptions call;
  zvkit::DemoOptions demo;
  zvkit::EmulatorCommandOptions emulator;
};

void describe(CLI::App& app, CommandLine& line) {
  app.require_subcommand(1);
  app.set_version_flag("--version", std::string(ZAK::Info::version()));

  auto* demo = app.add_subcommand("demo", "Play a day of the app against an emulator of the back-end, in this process");
  demo->add_flag("-v,--verbose", line.demo.verbose, "Show the kit's log");

  auto* emulator = app.add_subcommand("emulator", "Serve an emulator of the back-end until interrupted");
  emulator->add_option("--port", line.emulator.port, "Port on 127.0.0.1; 0 takes a free one")
      ->check(CLI::Range(0, 65535));

  app.add_subcommand("list", "Every operation with its arguments");

  auto* call = app.add_subcommand("call", "Make one operation: JSON in, JSON out");
  auto& options = line.call;
  call->add_option("operation", options.operation, "GROUP.OPERATION, as `zvkit list` names it")->required();
  call->add_option("arguments", options.arguments, "A JSON object of the arguments")->capture_default_str();
  call->add_option("--environment", options.environment, "Which of the back-end's environments")
      ->check(CLI::IsMember({"sandbox", "production"}))
      ->capture_default_str();
  call->add_option("--connect-to", options.connectTo, "HOST:PORT to reach instead of the servers themselves");
  call->add_option("--ca-file", options.caFile, "Trusted authorities, PEM")->check(CLI::ExistingFile);
  call->add_option("--firebase-token", options.firebaseToken,
                   "Firebase ID token to sign in with when no token is stored");
  call->add_option("--keychain", options.keychain, "Where the token is kept, unless it is where the kit chooses")
      ->check(CLI::IsMember({"memory", "file", "secret-service"}));
  call->add_flag("-v,--verbose", options.verbose, "Show the kit's log");
}

int run(const CLI::App& app, const CommandLine& line) {
  if (app.got_subcommand("list")) return zvkit::list();
  if (app.got_subcommand("call")) return zvkit::call(line.call);
  if (app.got_subcommand("demo")) return zvkit::demo(line.demo);
  return zvkit::serve(line.emulator);
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("Command-line host of ZVApiKit", "zvkit");
  CommandLine line;
  describe(app, line);
  try {
    app.parse(argc, argv);
    return run(app, line);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : usageError;
  } catch (const zvkit::UsageError& error) {
    std::cerr << error.what() << "\n";
    return usageError;
  } catch (const std::exception& error) {
    std::cerr << error.what() << "\n";
    return 1;
  }
}
