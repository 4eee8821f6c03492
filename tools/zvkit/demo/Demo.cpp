#include "Commands.hpp"
#include "Console.hpp"
#include "Run.hpp"
#include "Stage.hpp"

#include <iostream>

namespace zvkit {
namespace {

boost::asio::awaitable<void> wholeDay(Stage* stage) {
  for (const auto chapter : {arrive, postAndReact, endTheYear}) co_await chapter(stage);
}

}  // namespace

int demo(const DemoOptions& options) {
  // Besides the log, the kit prints the bodies of failing answers; both are shown or none.
  keepStandardOutputForResults();
  if (!options.verbose) std::cout.rdbuf(nullptr);
  Stage stage(options.verbose);
  stage.step("Started the back-end's emulator on 127.0.0.1:" + std::to_string(stage.emulator->port()));
  runInterruptibly(stage.io, wholeDay(&stage));
  printResult("\nDone: " + std::to_string(stage.emulator->requests().size()) + " requests over " +
              std::to_string(stage.emulator->counts().connections) + " TLS connections");
  return 0;
}

}  // namespace zvkit
