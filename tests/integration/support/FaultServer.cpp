#include "FaultServer.hpp"

#include <arpa/inet.h>
#include <cstdlib>
#include <cstring>
#include <netinet/in.h>
#include <pthread.h>
#include <signal.h>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>

namespace ZAK::Tests {
namespace {

/// A write to a connection that the client has closed must not end the test program; other threads keep their signals.
void blockBrokenPipe() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGPIPE);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

std::size_t bodyLength(const std::string& head) {
  constexpr std::string_view name = "\r\ncontent-length:";
  const char* const at = ::strcasestr(head.c_str(), name.data());
  return at == nullptr ? 0 : std::strtoul(at + name.size(), nullptr, 10);
}

}  // namespace

FaultServer::FaultServer(const TestCertificate& certificate, Script script, int newestTLS)
    : script_(std::move(script)), context_(SSL_CTX_new(TLS_server_method()), SSL_CTX_free) {
  SSL_CTX_use_certificate(context_.get(), certificate.own.x509.get());
  if (certificate.intermediate.x509) SSL_CTX_add1_chain_cert(context_.get(), certificate.intermediate.x509.get());
  SSL_CTX_use_PrivateKey(context_.get(), certificate.own.key.get());
  if (newestTLS != 0) {
    SSL_CTX_set_max_proto_version(context_.get(), newestTLS);
    SSL_CTX_set_security_level(context_.get(), 0);  // what is old is allowed on no other
  }
  listener_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  auto* generic = reinterpret_cast<sockaddr*>(&address);
  socklen_t length = sizeof(address);
  if (::bind(listener_, generic, length) != 0 || ::listen(listener_, 1024) != 0 ||
      ::getsockname(listener_, generic, &length) != 0) {
    throw std::runtime_error("the test server cannot listen");
  }
  port_ = ntohs(address.sin_port);
  acceptor_ = std::thread([this] { acceptConnections(); });
}

FaultServer::~FaultServer() {
  ::shutdown(listener_, SHUT_RDWR);
  acceptor_.join();
  ::close(listener_);
  {
    const std::lock_guard lock(mutex_);
    for (auto& connection : open_) {
      if (connection.number_ >= 0) ::shutdown(connection.number_, SHUT_RDWR);
    }
  }
  for (auto& connection : open_) connection.worker_.join();
}

std::string FaultServer::url(std::string_view path, std::string_view host) const {
  return "https://" + std::string(host) + ':' + std::to_string(port_) + std::string(path);
}

FaultServer::Script FaultServer::answering(std::string answer) {
  return [answer = std::move(answer)](Connection& connection) {
    if (!connection.handshake()) return;
    while (!connection.readRequest().empty()) connection.send(answer);
  };
}

FaultServer::Script FaultServer::answeringOnce(std::string answer, void (Connection::*end)()) {
  return [answer = std::move(answer), end](Connection& connection) {
    if (!connection.handshake() || connection.readRequest().empty()) return;
    connection.send(answer);
    (connection.*end)();
  };
}

void FaultServer::acceptConnections() {
  blockBrokenPipe();
  for (;;) {
    const int number = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    if (number < 0) return;
    const std::lock_guard lock(mutex_);
    open_.remove_if([](Connection& connection) {
      if (!connection.served_) return false;
      connection.worker_.join();
      return true;
    });
    auto& connection = open_.emplace_back(*this, number);
    connection.index_ = connections_++;
    connection.worker_ = std::thread([this, &connection] {
      script_(connection);
      connection.finish();
      connection.served_ = true;
    });
  }
}

void FaultServer::Connection::greet(std::string_view bytes) {
  char buffer[4096];
  if (number_ < 0 || ::recv(number_, buffer, sizeof(buffer), 0) <= 0) return;
  if (!bytes.empty()) static_cast<void>(::send(number_, bytes.data(), bytes.size(), MSG_NOSIGNAL));
}

bool FaultServer::Connection::handshake() {
  if (number_ < 0) return false;
  tls_.reset(SSL_new(server_.context_.get()), SSL_free);
  SSL_set_fd(tls_.get(), number_);
  if (SSL_accept(tls_.get()) == 1) return true;
  tls_.reset();
  return false;
}

std::string FaultServer::Connection::readRequest() {
  for (;;) {
    if (const auto end = received_.find("\r\n\r\n"); end != std::string::npos) {
      const std::size_t length = end + 4 + bodyLength(received_.substr(0, end));
      if (received_.size() >= length) {
        std::string request = received_.substr(0, length);
        received_.erase(0, length);
        ++server_.requests_;
        return request;
      }
    }
    char buffer[16384];
    const int count = tls_ ? SSL_read(tls_.get(), buffer, sizeof(buffer)) : 0;
    if (count <= 0) return {};
    server_.bytes_ += static_cast<std::size_t>(count);
    received_.append(buffer, static_cast<std::size_t>(count));
  }
}

void FaultServer::Connection::send(std::string_view bytes) {
  if (tls_ && !bytes.empty()) SSL_write(tls_.get(), bytes.data(), static_cast<int>(bytes.size()));
}

void FaultServer::Connection::finish() {
  if (tls_) SSL_shutdown(tls_.get());
  close(false);
}

void FaultServer::Connection::cut() { close(false); }

void FaultServer::Connection::reset() { close(true); }

void FaultServer::Connection::stall() {
  char buffer[4096];
  while (number_ >= 0 && ::recv(number_, buffer, sizeof(buffer), 0) > 0) {
  }
}

void FaultServer::Connection::close(bool byReset) {
  tls_.reset();
  const std::lock_guard lock(server_.mutex_);
  if (number_ < 0) return;
  if (byReset) {
    const linger now{1, 0};
    ::setsockopt(number_, SOL_SOCKET, SO_LINGER, &now, sizeof(now));
  }
  ::close(number_);
  number_ = -1;
}

std::string answerOf(const std::string& body, const std::string& headers, const std::string& status) {
  return "HTTP/1.1 " + status + "\r\n" + headers + "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

}  // namespace ZAK::Tests
