#pragma once

#include <zvapikit/Export.hpp>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ZAK {

/// The servers behind the emulator's one port, told apart by the Host header.
enum class EmulatorServer {
  unknown,         ///< a host that is none of the back-end's
  mobile,          ///< the mobile API
  authentication,  ///< tokens and phone numbers
  storage          ///< signed uploads, and pictures and videos
};

/// Each environment has users, posts and tokens of its own.
enum class EmulatorEnvironment {
  sandbox,    ///< `Configuration::Environment::sandbox`
  production  ///< `Configuration::Environment::production`
};

/// Names and values in the order in which they travel.
using EmulatorHeaders = std::vector<std::pair<std::string, std::string>>;

/// A request as it arrived.
///
/// Thread safety: as a standard container.
struct ZVAPIKIT_API EmulatorRequest {
  EmulatorServer server = EmulatorServer::unknown;                 ///< whom it is for
  EmulatorEnvironment environment = EmulatorEnvironment::sandbox;  ///< whose server
  std::string method{};                                            ///< for example `GET`
  std::string host{};                                              ///< the Host header, port included
  std::string target{};                                            ///< as sent: base path, path and query
  std::string path{};         ///< the path below the server's base, still percent-encoded, without the query
  EmulatorHeaders headers{};  ///< all of them
  std::string body{};         ///< decoded from its transfer coding

  /// The first value under the name, whatever its case; null when there is none.
  [[nodiscard]] const std::string* header(std::string_view name) const;
};

/// An answer. Content-Length is added when it is sent, Content-Type `application/json` unless the headers hold one.
///
/// Thread safety: as a standard container.
struct EmulatorResponse {
  int status = 200;           ///< HTTP status
  std::string body{};         ///< perhaps empty
  EmulatorHeaders headers{};  ///< beside those that are added
};

}  // namespace ZAK
