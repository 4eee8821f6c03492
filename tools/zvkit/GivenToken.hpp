#pragma once

#include <zvapikit/core/FirebaseAuthentifier.hpp>

#include <boost/asio/awaitable.hpp>

#include <string>
#include <utility>

namespace zvkit {

/// Signs in with a Firebase token that is at hand.
class GivenToken final : public ZAK::FirebaseAuthentifier {
 public:
  explicit GivenToken(std::string token_ = {}) : token(std::move(token_)) {}

  boost::asio::awaitable<std::string> idToken() override { return yield(token); }
  void signOut() noexcept override { token.clear(); }

  std::string token;  ///< empty once signed out

 private:
  static boost::asio::awaitable<std::string> yield(std::string token) { co_return token; }
};

}  // namespace zvkit
