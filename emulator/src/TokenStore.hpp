#pragma once

#include <zvapikit/json/Date.hpp>

#include <chrono>
#include <map>
#include <optional>
#include <string>

namespace ZAK {

/// The bearer tokens of one environment. A refresh token serves once.
class TokenStore {
 public:
  struct Issued {
    std::string access;
    std::string refresh;
    Date expires;
  };

  [[nodiscard]] Issued issue(const std::string& userId, Date expires);
  /// Absent when the refresh token is unknown or was used before.
  [[nodiscard]] std::optional<Issued> refresh(const std::string& refreshToken, Date expires);
  /// The user whom the access token signs in; absent when it is unknown or has expired.
  [[nodiscard]] std::optional<std::string> user(const std::string& accessToken, Date now) const;

  void expire(const std::string& accessToken) { access_.erase(accessToken); }
  void revoke(const std::string& accessToken);
  void expireAll() { access_.clear(); }
  void revokeAll();

 private:
  struct Access {
    std::string userId;
    Date expires;
  };
  struct Refresh {
    std::string userId;
    std::string access;
  };

  std::map<std::string, Access> access_;
  std::map<std::string, Refresh> refresh_;
};

}  // namespace ZAK
