#pragma once

#include <zvapikit/core/LoggerDelegate.hpp>
#include <zvapikit/http/HTTPProgress.hpp>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <deque>
#include <exception>
#include <optional>
#include <string>
#include <string_view>

namespace zvkit {

/// Where results go: the real standard output. What the kit itself prints of failing bodies is sent to standard error
/// by `keepStandardOutputForResults`, so that a script can read the one from the other.
void keepStandardOutputForResults();
void printResult(std::string_view line);

/// Shows how far transfers are that run at once, on one line: drawn in place on a terminal, elsewhere printed when they
/// are over. Nothing is shown of transfers that never began.
class ProgressLine {
 public:
  /// `isLogged`: a log is written meanwhile, with which drawing in place would get mixed up.
  ProgressLine(std::FILE* file, bool isLogged);
  ~ProgressLine() { finish(); }
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  /// One more transfer, which tells the function how far it is; the line must still be there when it does.
  ZAK::HTTPProgress::Function add(std::string name = {});
  /// Ends the line.
  void finish() noexcept;

 private:
  struct Transfer {
    std::string name;
    std::uint64_t done = 0;
    std::optional<std::uint64_t> total{};
  };

  [[nodiscard]] std::string text() const;

  std::FILE* file_;
  bool isInPlace_;
  std::deque<Transfer> transfers_{};
  std::size_t drawn_ = 0;  ///< length of what stands on the line
};

/// Writes the kit's log to standard error.
class ConsoleLogger final : public ZAK::LoggerDelegate {
 public:
  void message(std::string_view text, std::optional<std::string_view> extra) override;
  void warning(std::string_view text) override;
  void error(std::string_view text, const std::exception* error) override;
};

}  // namespace zvkit
