#pragma once

#include <zvapikit/emulator/EmulatorRequest.hpp>

#include <chrono>
#include <cstddef>
#include <functional>
#include <limits>
#include <optional>
#include <string>

namespace ZAK {

/// A scripted misbehaviour: which requests it meets, and what happens to them. Everything is optional and combines:
///
///     emulator->inject({.server = EmulatorServer::mobile, .path = "/content/posts/{id}", .times = 2,
///                       .answer = EmulatorResponse{503, "busy"}});
///     emulator->inject({.cutAfter = 40, .ending = EmulatorFault::Ending::reset});
///
/// Of several faults that fit, the one injected first meets the request. Unless `answer` or `raw` stands in for it, the
/// request is served before its answer is spoilt: what it changes stays changed.
///
/// Thread safety: as a standard container.
struct EmulatorFault {
  /// For `times`: as long as the fault is there.
  static constexpr int always = (std::numeric_limits<int>::max)();

  /// What happens to the bearer token of the request before the request is served.
  enum class Token {
    keep,    ///< nothing
    expire,  ///< the access token is no longer accepted; its refresh token still is
    revoke   ///< neither is accepted any more
  };

  /// What happens to the connection once the answer, or its first `cutAfter` bytes, went out.
  enum class Ending {
    keepAlive,  ///< stays open; with `cutAfter` the rest of the answer never comes
    close,      ///< TLS is closed in good order, then TCP
    drop,       ///< TCP is closed (FIN) without a word at the TLS level
    reset       ///< TCP is reset (RST)
  };

  std::optional<EmulatorServer> server{};  ///< absent: every server
  std::string method{};                    ///< empty: every method
  std::string path{};  ///< a path template below the base (`/content/posts/{id}`); empty: every path
  /// Called while the emulator serves, so it must not call the emulator.
  std::function<bool(const EmulatorRequest&)> predicate{};
  int times = 1;  ///< how many requests are met

  std::chrono::milliseconds delay{};           ///< before the first byte of the answer
  Token token = Token::keep;                   ///< mobile API only
  std::optional<EmulatorResponse> answer{};    ///< instead of the server's own answer
  std::optional<std::string> raw{};            ///< these bytes instead of any HTTP answer
  std::optional<std::size_t> gzipBomb{};       ///< the body becomes gzip that unpacks to this many bytes
  std::ptrdiff_t contentLengthError = 0;       ///< added to the length that is declared
  std::size_t dripBytes = 0;                   ///< bytes sent at a time; 0: all at once
  std::chrono::milliseconds dripInterval{10};  ///< between two of them
  std::optional<std::size_t> cutAfter{};       ///< bytes of the answer, its head included, that go out
  Ending ending = Ending::keepAlive;           ///< of the connection
};

}  // namespace ZAK
