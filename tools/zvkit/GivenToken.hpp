#pragma once

#include <zvapikit/core/FirebaseAuthentifier.hpp>

#include <boost/asio/awaitable.hpp>

#include <stdexcept>
#include <string>
#include <utility>

namespace zvkit {

/// Signs in with a Firebase token that is at hand; without one nobody does, and the kit need not try.
class GivenToken final : public ZAK::FirebaseAuthentifier {
 public:
  explicit GivenToken(std::string token_ = {}) : token(std::move(token_)) {}

  boost::asio::awaitable<std::string> idToken() override { return yield(token); }
  void signOut() noexcept override { token.clear(); }

  std::string token;  ///< empty once signed out

 private:
  static boost::asio::awaitable<std::string> yield(std::string token) {
    if (token.empty()) throw std::runtime_error("no Firebase token is at hand");
    co_return token;
  }
};

}  // namespace zvkit
