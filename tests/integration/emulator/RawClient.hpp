#pragma once

#include <zvapikit/emulator/Emulator.hpp>

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ssl/context.hpp>
#include <boost/asio/ssl/stream.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <nlohmann/json.hpp>

#include <string>
#include <string_view>

namespace ZAK::Test {

/// A blocking HTTPS client that owes nothing to the kit: one connection, certificate and host name verified. Every
/// failure is a boost::system::system_error.
class RawClient {
 public:
  struct Answer {
    int status = 0;
    std::string body;
    std::string contentEncoding;

    [[nodiscard]] nlohmann::json json() const { return nlohmann::json::parse(body); }
    /// The error key of a failing body; empty when it has none.
    [[nodiscard]] std::string errorKey() const { return json().value("errorKey", ""); }
  };

  RawClient(const Emulator& emulator, std::string host, const std::string& accessToken = {});

  /// A JSON body unless it is null; headers beyond Host and Content-Type come from `authorize`.
  Answer send(std::string_view method, std::string_view target, const nlohmann::json& body = nullptr);
  Answer sendText(std::string_view method, std::string_view target, std::string body, std::string_view contentType);
  void authorize(const std::string& accessToken) { authorization_ = "Bearer " + accessToken; }
  /// The bytes up to the end of the connection, or up to `most` of them.
  std::string sendForBytes(std::string_view method, std::string_view target, std::size_t most);
  /// How the connection ended in `sendForBytes`.
  [[nodiscard]] boost::system::error_code ending() const { return ending_; }

 private:
  boost::asio::io_context context_;
  boost::asio::ssl::context tls_{boost::asio::ssl::context::tls_client};
  boost::asio::ssl::stream<boost::asio::ip::tcp::socket> stream_{context_, tls_};
  boost::beast::flat_buffer buffer_;
  std::string host_;
  std::string authorization_;
  boost::system::error_code ending_;
};

}  // namespace ZAK::Test
