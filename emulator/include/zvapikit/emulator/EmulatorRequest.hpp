#pragma once

#include <zvapikit/Export.hpp>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ZAK {

/// The servers behind the emulator's one port, told apart by the Host header.
enum class EmulatorServer { unknown, mobile, authentication, storage };

/// Each environment has users, posts and tokens of its own.
enum class EmulatorEnvironment { sandbox, production };

/// Names and values in the order in which they travel.
using EmulatorHeaders = std::vector<std::pair<std::string, std::string>>;

/// A request as it arrived.
struct ZVAPIKIT_API EmulatorRequest {
  EmulatorServer server = EmulatorServer::unknown;
  EmulatorEnvironment environment = EmulatorEnvironment::sandbox;
  std::string method{};
  std::string host{};    ///< the Host header, port included
  std::string target{};  ///< as sent: base path, path and query
  std::string path{};    ///< the path below the server's base, still percent-encoded, without the query
  EmulatorHeaders headers{};
  std::string body{};

  /// The first value under the name, whatever its case; null when there is none.
  [[nodiscard]] const std::string* header(std::string_view name) const;
};

/// An answer. Content-Length is added when it is sent, Content-Type `application/json` unless the headers hold one.
struct EmulatorResponse {
  int status = 200;
  std::string body{};
  EmulatorHeaders headers{};
};

}  // namespace ZAK
