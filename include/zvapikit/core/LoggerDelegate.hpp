#pragma once

#include <zvapikit/Export.hpp>

#include <exception>
#include <optional>
#include <string_view>

namespace ZAK {

/// Receives the kit's log lines. Each begins with the bracketed name of the component that wrote it.
///
/// Thread safety: called from any thread that runs the client's executor or that of a call, for several calls at once.
/// Must not block. What it throws is swallowed.
class ZVAPIKIT_API LoggerDelegate {
 public:
  virtual ~LoggerDelegate() = default;

  /// Something went as it should. The kit always leaves `extra` empty.
  virtual void message(std::string_view text, std::optional<std::string_view> extra) = 0;
  /// Something went wrong that the kit mends by itself.
  virtual void warning(std::string_view text) = 0;
  /// Something failed. `error` is null when what failed was no `std::exception`, or the text says it all; it is valid
  /// during the call only.
  ///
  /// The text of a failed request, download or keychain access already holds `error->what()`: a logger that adds it
  /// says it twice. That of a failed token retrieval does not. The text of a failed request has two lines.
  virtual void error(std::string_view text, const std::exception* error) = 0;
};

}  // namespace ZAK
