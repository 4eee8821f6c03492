#include "Console.hpp"

#include <cstdio>
#include <iostream>

namespace zvkit {

void keepStandardOutputForResults() { std::cout.rdbuf(std::cerr.rdbuf()); }

void printResult(std::string_view line) {
  std::fwrite(line.data(), 1, line.size(), stdout);
  std::fputc('\n', stdout);
  std::fflush(stdout);
}

void ConsoleLogger::message(std::string_view text, std::optional<std::string_view>) {
  std::cerr << std::string(text) + "\n";
}

void ConsoleLogger::warning(std::string_view text) { std::cerr << "warning: " + std::string(text) + "\n"; }

void ConsoleLogger::error(std::string_view text, const std::exception*) {
  std::cerr << "error: " + std::string(text) + "\n";
}

}  // namespace zvkit
