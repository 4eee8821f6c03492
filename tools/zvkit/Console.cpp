#include "Console.hpp"

#include <cerrno>
#include <cstdio>
#include <iostream>
#include <system_error>

namespace zvkit {

void keepStandardOutputForResults() { std::cout.rdbuf(std::cerr.rdbuf()); }

void printResult(std::string_view line) {
  const bool written = std::fwrite(line.data(), 1, line.size(), stdout) == line.size() &&
                       std::fputc('\n', stdout) != EOF && std::fflush(stdout) == 0;
  if (!written) throw std::system_error(errno, std::generic_category(), "standard output");
}

void ConsoleLogger::message(std::string_view text, std::optional<std::string_view>) {
  std::cerr << std::string(text) + "\n";
}

void ConsoleLogger::warning(std::string_view text) { std::cerr << "warning: " + std::string(text) + "\n"; }

void ConsoleLogger::error(std::string_view text, const std::exception*) {
  std::cerr << "error: " + std::string(text) + "\n";
}

}  // namespace zvkit
