#pragma once

#include "TestAuthority.hpp"

#include <openssl/ssl.h>

#include <atomic>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

namespace ZAK::Tests {

/// A TLS server on a loopback port that does to each connection what a script says, byte by byte, and counts what came.
///
/// Every connection is served by a thread of its own, which the scripts run on and may block.
class FaultServer {
 public:
  class Connection;
  /// What happens to a connection, from its acceptance on. At its end the connection is closed in an orderly way.
  using Script = std::function<void(Connection&)>;

  /// With a certificate that the tests' clients trust. `newestTLS` is a version of OpenSSL's, such as TLS1_1_VERSION; 0
  /// means the newest there is.
  explicit FaultServer(Script script, int newestTLS = 0) : FaultServer(authority().issue(), script, newestTLS) {}
  FaultServer(const TestCertificate& certificate, Script script, int newestTLS = 0);
  /// Ends all connections.
  ~FaultServer();
  FaultServer(const FaultServer&) = delete;
  FaultServer& operator=(const FaultServer&) = delete;

  [[nodiscard]] int port() const noexcept { return port_; }
  /// `https://HOST:PORT` with the path behind it.
  [[nodiscard]] std::string url(std::string_view path = "/", std::string_view host = "localhost") const;

  [[nodiscard]] int connections() const noexcept { return connections_; }
  /// Requests that came whole.
  [[nodiscard]] int requests() const noexcept { return requests_; }
  /// Bytes that came over TLS, after decryption.
  [[nodiscard]] std::size_t bytes() const noexcept { return bytes_; }

  /// A script that answers every request alike, for as long as the client keeps the connection.
  [[nodiscard]] static Script answering(std::string answer);
  /// A script that answers one request and then ends the connection.
  [[nodiscard]] static Script answeringOnce(std::string answer, void (Connection::*end)());

 private:
  void acceptConnections();

  Script script_;
  std::shared_ptr<SSL_CTX> context_;
  int listener_ = -1;
  int port_ = 0;
  std::atomic<int> connections_{0};
  std::atomic<int> requests_{0};
  std::atomic<std::size_t> bytes_{0};
  std::mutex mutex_;
  std::list<Connection> open_;
  std::thread acceptor_;
};

/// One connection, as its script sees it. All operations do nothing once the connection is over.
class FaultServer::Connection {
 public:
  Connection(FaultServer& server, int number) : server_(server), number_(number) {}

  /// Counts from 0 in the order of acceptance.
  [[nodiscard]] int index() const noexcept { return index_; }

  /// Takes the first bytes that the client sends and answers with these, both below TLS.
  void greet(std::string_view bytes);
  /// False when the client refused.
  bool handshake();
  /// The next request with its body; empty when the client has closed.
  std::string readRequest();
  void send(std::string_view bytes);
  /// Ends TLS, then the connection.
  void finish();
  /// Ends the connection without ending TLS.
  void cut();
  /// Ends the connection by RST.
  void reset();
  /// Takes what comes and does nothing until the client or the server goes.
  void stall();

 private:
  friend class FaultServer;
  void close(bool byReset);

  FaultServer& server_;
  int number_;
  int index_ = 0;
  std::shared_ptr<SSL> tls_;
  std::string received_;
  std::thread worker_;
  std::atomic<bool> served_{false};
};

/// An answer with its length. Each header ends in CRLF.
[[nodiscard]] std::string answerOf(const std::string& body, const std::string& headers = "",
                                   const std::string& status = "200 OK");

}  // namespace ZAK::Tests
