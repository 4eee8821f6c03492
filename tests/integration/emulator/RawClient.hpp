#pragma once

#include <zvapikit/emulator/EmulatorThread.hpp>

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ssl/context.hpp>
#include <boost/asio/ssl/stream.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <atomic>
#include <chrono>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace ZAK::Tests {

constexpr const char* sandboxAuth = "auth-dev.zolvi.example";
constexpr const char* sandboxMobile = "mobile-dev.zolvi.example";

/// The body of a post.
inline const std::string post = R"({"takenAt":"2023-04-05T17:09:12.345Z","isLate":false,"retakeCounter":2,
    "backCamera":{"bucket":"zolvi-photos-dev","path":"Photos/a b.jpg","width":1500,"height":2000},
    "frontCamera":{"bucket":"zolvi-photos-dev","path":"Photos/front.jpg","width":1500,"height":2000},
    "visibility":["friends"],"location":{"latitude":48.85,"longitude":2.35}})";

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

  /// `request` is method and target.
  Answer send(const std::string& request, std::string body = {}, std::string_view contentType = "application/json");
  void authorize(const std::string& accessToken) { authorization_ = "Bearer " + accessToken; }
  /// The bytes up to the end of the connection, or up to `most` of them.
  std::string sendForBytes(const std::string& request, std::size_t most);
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

/// The body of a Firebase grant.
[[nodiscard]] nlohmann::json firebaseGrant(const std::string& token);
/// An access token of the user's for the sandbox.
[[nodiscard]] std::string signIn(const Emulator& emulator, const std::string& userId);

/// An emulator whose clock the test moves, from 2023-04-05T17:10:00Z on, and users who call its sandbox.
class EmulatorTest : public testing::Test {
 protected:
  explicit EmulatorTest(EmulatorOptions options = {.tokenLifetime = std::chrono::hours(1000)});

  /// One request of a user's, and what comes of it.
  struct Step {
    const char* user;
    std::string request;  ///< method and path below the API's base
    std::string body;     ///< empty for none
    /// A status, an error key, or JSON that the answer agrees with: objects may hold more, and null stands for none.
    std::string answer;
  };
  void play(const std::vector<Step>& steps);
  RawClient::Answer send(const std::string& user, const std::string& request, const std::string& body = {});
  nlohmann::json read(const std::string& user, const std::string& path) { return send(user, "GET " + path).json(); }
  /// A list of pages of two elements at most, read to its end.
  nlohmann::json readAll(const std::string& user, const std::string& path);
  /// The ids in such a list.
  std::vector<std::string> ids(const std::string& user, const std::string& path);
  void advance(std::chrono::microseconds by) { now_ += by.count(); }

 private:
  std::atomic<std::int64_t> now_ = 1'680'714'600'000'000;
  std::map<std::string, RawClient> clients_;

 protected:
  EmulatorThread emulator_;
};

}  // namespace ZAK::Tests
