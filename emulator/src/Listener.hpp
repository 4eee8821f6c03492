#pragma once

#include "Backend.hpp"
#include "Certificates.hpp"
#include "Connection.hpp"

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/awaitable.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>

#include <memory>
#include <mutex>
#include <vector>

namespace ZAK {

/// Takes connections on a loopback port and runs each on a strand of its own.
class Listener : public std::enable_shared_from_this<Listener> {
 public:
  Listener(boost::asio::any_io_executor executor, int port, ServerIdentity identity, std::shared_ptr<Backend> backend);

  void start();
  /// Closes the port and every connection; from any thread.
  void stop();
  [[nodiscard]] int port() const noexcept { return port_; }

 private:
  [[nodiscard]] boost::asio::awaitable<void> run(std::shared_ptr<Listener> self);
  /// False when the listener has stopped.
  [[nodiscard]] bool adopt(const std::shared_ptr<Connection>& connection);

  boost::asio::any_io_executor executor_;
  ServerIdentity identity_;
  std::shared_ptr<Backend> backend_;
  boost::asio::ip::tcp::acceptor acceptor_;
  boost::asio::steady_timer timer_;
  int port_;
  std::mutex mutex_;
  bool stopped_ = false;
  std::vector<std::weak_ptr<Connection>> connections_;
};

}  // namespace ZAK
