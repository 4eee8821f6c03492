#pragma once

#include "Backend.hpp"

#include <boost/asio/awaitable.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ssl/context.hpp>
#include <boost/asio/ssl/stream.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/beast/core/flat_buffer.hpp>

#include <memory>

namespace ZAK {

/// One client's connection, from its handshake to its end. Everything happens on the strand of its socket.
class Connection : public std::enable_shared_from_this<Connection> {
 public:
  Connection(boost::asio::ip::tcp::socket socket, boost::asio::ssl::context& context, std::shared_ptr<Backend> backend);

  void start();
  /// Ends the connection; from any thread.
  void stop();

 private:
  struct Received {
    EmulatorRequest request;
    bool keepAlive = true;
  };

  [[nodiscard]] boost::asio::awaitable<void> run(std::shared_ptr<Connection> self);
  [[nodiscard]] boost::asio::awaitable<Received> receive();
  [[nodiscard]] boost::asio::awaitable<void> pause(std::chrono::milliseconds duration);
  [[nodiscard]] boost::asio::awaitable<void> send(Delivery delivery);
  [[nodiscard]] boost::asio::awaitable<void> end(EmulatorFault::Ending ending);
  void closeSocket();

  boost::asio::ssl::stream<boost::asio::ip::tcp::socket> stream_;
  boost::asio::steady_timer timer_;
  boost::beast::flat_buffer buffer_;
  std::shared_ptr<Backend> backend_;
  bool stopped_ = false;
};

}  // namespace ZAK
