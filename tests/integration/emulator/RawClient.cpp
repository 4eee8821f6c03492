#include "RawClient.hpp"

#include <boost/asio/read.hpp>
#include <boost/asio/ssl/host_name_verification.hpp>
#include <boost/beast/http/message.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/string_body.hpp>
#include <boost/beast/http/write.hpp>

namespace ZAK::Test {

namespace asio = boost::asio;
namespace http = boost::beast::http;

namespace {

/// The context must know its authority before the stream is made from it.
asio::ssl::context trusting(const Emulator& emulator) {
  asio::ssl::context context(asio::ssl::context::tls_client);
  context.load_verify_file(emulator.caFile().string());
  context.set_verify_mode(asio::ssl::verify_peer);
  return context;
}

}  // namespace

RawClient::RawClient(const Emulator& emulator, std::string host, const std::string& accessToken)
    : tls_(trusting(emulator)), host_(std::move(host)) {
  if (!accessToken.empty()) authorize(accessToken);
  const asio::ip::tcp::endpoint endpoint(asio::ip::address_v4::loopback(),
                                         static_cast<asio::ip::port_type>(emulator.port()));
  stream_.set_verify_callback(asio::ssl::host_name_verification(host_));
  stream_.next_layer().connect(endpoint);
  stream_.handshake(asio::ssl::stream_base::client);
}

RawClient::Answer RawClient::send(std::string_view method, std::string_view target, const nlohmann::json& body) {
  return body.is_null() ? sendText(method, target, {}, {}) : sendText(method, target, body.dump(), "application/json");
}

RawClient::Answer RawClient::sendText(std::string_view method, std::string_view target, std::string body,
                                      std::string_view contentType) {
  http::request<http::string_body> request;
  request.version(11);
  request.method_string(method);
  request.target(target);
  request.set(http::field::host, host_);
  if (!authorization_.empty()) request.set(http::field::authorization, authorization_);
  if (!contentType.empty()) request.set(http::field::content_type, contentType);
  request.body() = std::move(body);
  request.prepare_payload();
  http::write(stream_, request);
  http::response<http::string_body> response;
  http::read(stream_, buffer_, response);
  return {static_cast<int>(response.result_int()), std::move(response.body()),
          std::string(response[http::field::content_encoding])};
}

std::string RawClient::sendForBytes(std::string_view method, std::string_view target, std::size_t most) {
  const std::string head = std::string(method) + " " + std::string(target) + " HTTP/1.1\r\nHost: " + host_ + "\r\n\r\n";
  asio::write(stream_, asio::buffer(head));
  std::string bytes(most, '\0');
  bytes.resize(asio::read(stream_, asio::buffer(bytes), ending_));
  return bytes;
}

}  // namespace ZAK::Test
