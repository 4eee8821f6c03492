#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace ZAK {

/// How transfers reach the network. Nothing here can be steered by environment variables, and certificate
/// verification cannot be switched off.
///
/// Thread safety: as a standard container.
struct TransportOptions {
  /// Sends transfers for one host and port elsewhere; certificates are still checked against the original name.
  struct ConnectTo {
    /// All fields, in their order.
    ConnectTo(std::string host_, int port_, std::string toHost_, int toPort_)
        : host(std::move(host_)), port(port_), toHost(std::move(toHost_)), toPort(toPort_) {}

    std::string host;    ///< empty: every host
    int port;            ///< 0: every port
    std::string toHost;  ///< name or address that is connected to; empty: the host itself
    int toPort;          ///< 0: the port itself
  };

  /// File of trusted authorities in PEM form; absent means the system's.
  std::optional<std::filesystem::path> caFile{};
  /// URL of a proxy; absent means a direct connection.
  std::optional<std::string> proxy{};
  /// Hosts that are reached elsewhere; the first entry that fits is used.
  std::vector<ConnectTo> connectTo{};
  /// Longest time for connecting, TLS included. Calls share connections: one that joins an attempt which then fails may
  /// wait twice as long.
  std::chrono::milliseconds connectTimeout = std::chrono::seconds(15);
  /// Longest time without progress, unless a request says otherwise.
  std::chrono::milliseconds stallTimeout = std::chrono::seconds(60);
  /// Largest body that is held in memory, in bytes after decompression.
  std::size_t maximumBodySize = std::size_t{64} << 20;
  /// Most connections to one host at once; further calls wait for one, or share one over HTTP/2.
  int connectionsPerHost = 6;
};

}  // namespace ZAK
