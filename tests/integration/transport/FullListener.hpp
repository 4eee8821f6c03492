#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>

#include <list>
#include <string>

namespace ZAK::Tests {

/// A loopback port whose queue of connections is full: connecting to it hangs.
class FullListener {
 public:
  explicit FullListener(const char* host = "127.0.0.1", int port = 0)
      : listener_(context_, {boost::asio::ip::make_address(host), static_cast<std::uint16_t>(port)}) {
    listener_.listen(0);
    for (int i = 0; i < 4; ++i) {
      auto& filler = fillers_.emplace_back(context_, boost::asio::ip::tcp::v4());
      filler.async_connect(listener_.local_endpoint(), [](boost::system::error_code) {});
    }
  }

  /// Lets what hangs be refused.
  void close() { listener_.close(); }
  [[nodiscard]] std::string url() const {
    return "https://localhost:" + std::to_string(listener_.local_endpoint().port()) + '/';
  }

 private:
  boost::asio::io_context context_;
  boost::asio::ip::tcp::acceptor listener_;
  std::list<boost::asio::ip::tcp::socket> fillers_;
};

}  // namespace ZAK::Tests
