#include "RawClient.hpp"

#include <boost/asio/read.hpp>
#include <boost/asio/ssl/host_name_verification.hpp>
#include <boost/beast/http/message.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/string_body.hpp>
#include <boost/beast/http/write.hpp>

#include <algorithm>
#include <cctype>

namespace ZAK::Tests {

namespace asio = boost::asio;
namespace http = boost::beast::http;
using nlohmann::json;

namespace {

/// The context must know its authority before the stream is made from it.
asio::ssl::context trusting(const Emulator& emulator) {
  asio::ssl::context context(asio::ssl::context::tls_client);
  context.load_verify_file(emulator.caFile().string());
  context.set_verify_mode(asio::ssl::verify_peer);
  return context;
}

bool agrees(const json& actual, const json& expected) {
  if (expected.is_array() && actual.is_array()) {
    return std::equal(actual.begin(), actual.end(), expected.begin(), expected.end(), agrees);
  }
  if (!expected.is_object() || !actual.is_object()) return actual == expected;
  const auto items = expected.items();
  return std::all_of(items.begin(), items.end(), [&](const auto& item) {
    const bool there = actual.contains(item.key());
    return item.value().is_null() ? !there : there && agrees(actual.at(item.key()), item.value());
  });
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

RawClient::Answer RawClient::send(const std::string& request, std::string body, std::string_view contentType) {
  const std::size_t blank = request.find(' ');
  http::request<http::string_body> message;
  message.version(11);
  message.method_string(request.substr(0, blank));
  message.target(request.substr(blank + 1));
  message.set(http::field::host, host_);
  if (!authorization_.empty()) message.set(http::field::authorization, authorization_);
  if (!body.empty()) message.set(http::field::content_type, contentType);
  message.body() = std::move(body);
  message.prepare_payload();
  http::write(stream_, message);
  http::response<http::string_body> response;
  http::read(stream_, buffer_, response);
  return {static_cast<int>(response.result_int()), std::move(response.body()),
          std::string(response[http::field::content_encoding])};
}

std::string RawClient::sendForBytes(const std::string& request, std::size_t most) {
  asio::write(stream_, asio::buffer(request + " HTTP/1.1\r\nHost: " + host_ + "\r\n\r\n"));
  std::string bytes(most, '\0');
  bytes.resize(asio::read(stream_, asio::buffer(bytes), ending_));
  return bytes;
}

json firebaseGrant(const std::string& token) {
  return {{"grant_type", "firebase"},
          {"client_id", "ios"},
          {"client_secret", "D8B13E62-0F4A-47C9-8E15-B93A6C2D7F40"},
          {"token", token}};
}

std::string signIn(const Emulator& emulator, const std::string& userId) {
  const std::string grant = firebaseGrant("firebase-" + userId).dump();
  return RawClient(emulator, sandboxAuth).send("POST /main/token?grant_type=firebase", grant).json().at("access_token");
}

EmulatorTest::EmulatorTest(EmulatorOptions options)
    : emulator_([&] {
        options.now = [this] { return Date(std::chrono::microseconds(now_.load())); };
        return std::move(options);
      }()) {}

void EmulatorTest::play(const std::vector<Step>& steps) {
  for (const Step& step : steps) {
    const auto answer = send(step.user, step.request, step.body);
    const char first = step.answer.front();
    const bool as = std::isdigit(static_cast<unsigned char>(first)) ? std::to_string(answer.status) == step.answer
                    : first == '{' || first == '['                  ? agrees(answer.json(), json::parse(step.answer))
                                                                    : answer.errorKey() == step.answer;
    EXPECT_TRUE(as) << step.user << ": " << step.request << ' ' << step.body << "\nshould be " << step.answer
                    << "\nbut is " << answer.status << ' ' << answer.body;
  }
}

RawClient::Answer EmulatorTest::send(const std::string& user, const std::string& request, const std::string& body) {
  auto at = clients_.find(user);
  if (at == clients_.end()) at = clients_.try_emplace(user, *emulator_, sandboxMobile, signIn(*emulator_, user)).first;
  std::string whole = request;
  return at->second.send(whole.insert(request.find('/'), "/main/api"), body);
}

json EmulatorTest::readAll(const std::string& user, const std::string& path) {
  json all = json::array();
  for (std::string query = "?page"; query != "?page=";) {
    const json page = read(user, path + query);
    EXPECT_LE(page.at("data").size(), 2u);
    all.insert(all.end(), page.at("data").begin(), page.at("data").end());
    query = "?page=" + page.value("next", "");
  }
  return all;
}

std::vector<std::string> EmulatorTest::ids(const std::string& user, const std::string& path) {
  std::vector<std::string> found;
  for (const json& element : readAll(user, path)) found.push_back(element.at(element.contains("id") ? "id" : "userId"));
  return found;
}

}  // namespace ZAK::Tests
