#pragma once

#include <zvapikit/core/LoggerDelegate.hpp>

#include <exception>
#include <string>
#include <string_view>

namespace zvkit {

/// Where results go: the real standard output. What the kit itself prints of failing bodies is sent to standard error
/// by `keepStandardOutputForResults`, so that a script can read the one from the other.
void keepStandardOutputForResults();
void printResult(std::string_view line);

/// Writes the kit's log to standard error.
class ConsoleLogger final : public ZAK::LoggerDelegate {
 public:
  void message(std::string_view text, std::optional<std::string_view> extra) override;
  void warning(std::string_view text) override;
  void error(std::string_view text, const std::exception* error) override;
};

}  // namespace zvkit
