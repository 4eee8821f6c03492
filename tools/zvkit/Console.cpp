#include "Console.hpp"

#include <algorithm>
#include <cerrno>
#include <iostream>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace zvkit {
namespace {

/// The bar, the share in percent and the whole; without a known whole only how much is done.
std::string drawnProgress(std::uint64_t done, std::optional<std::uint64_t> total, std::uint64_t width) {
  const auto kibibytes = [](std::uint64_t bytes) { return std::to_string((bytes + 512) / 1024) + " KiB"; };
  if (!total || *total == 0) return kibibytes(done);
  const auto filled = static_cast<std::size_t>(width * done / *total);
  return "[" + std::string(filled, '#') + std::string(width - filled, '.') + "] " +
         std::to_string(100 * done / *total) + " % of " + kibibytes(*total);
}

}  // namespace

void keepStandardOutputForResults() { std::cout.rdbuf(std::cerr.rdbuf()); }

void printResult(std::string_view line) {
  const bool written = std::fwrite(line.data(), 1, line.size(), stdout) == line.size() &&
                       std::fputc('\n', stdout) != EOF && std::fflush(stdout) == 0;
  if (!written) throw std::system_error(errno, std::generic_category(), "standard output");
}

ProgressLine::ProgressLine(std::FILE* file, bool isLogged)
    : file_(file), isInPlace_(!isLogged && ::isatty(::fileno(file)) != 0) {}

ZAK::HTTPProgress::Function ProgressLine::add(std::string name) {
  Transfer& transfer = transfers_.emplace_back(Transfer{std::move(name)});
  return [this, &transfer](std::uint64_t done, std::optional<std::uint64_t> total) {
    transfer.done = done;
    transfer.total = total;
    std::string line = text();
    drawn_ = std::max(drawn_, line.size());
    if (!isInPlace_) return;
    line.resize(drawn_, ' ');
    std::fprintf(file_, "\r%s", line.c_str());
    std::fflush(file_);
  };
}

void ProgressLine::finish() noexcept {
  if (drawn_ == 0) return;
  drawn_ = 0;
  std::fprintf(file_, "%s\n", isInPlace_ ? "" : text().c_str());
  std::fflush(file_);
}

std::string ProgressLine::text() const {
  // Two transfers just fit a line of 80 columns.
  const std::uint64_t width = transfers_.size() == 1 ? 24 : 10;
  std::string line;
  for (const Transfer& transfer : transfers_)
    line += "  " + transfer.name + drawnProgress(transfer.done, transfer.total, width);
  return line;
}

void ConsoleLogger::message(std::string_view text, std::optional<std::string_view>) {
  std::cerr << std::string(text) + "\n";
}

void ConsoleLogger::warning(std::string_view text) { std::cerr << "warning: " + std::string(text) + "\n"; }

void ConsoleLogger::error(std::string_view text, const std::exception*) {
  std::cerr << "error: " + std::string(text) + "\n";
}

}  // namespace zvkit
