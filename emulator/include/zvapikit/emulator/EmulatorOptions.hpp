#pragma once

#include <zvapikit/json/Date.hpp>

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace ZAK {

/// A user who exists when the emulator starts. The Firebase token `firebase-<id>` signs the user in.
struct EmulatorUser {
  std::string id{};
  std::string username{};
  std::string fullname{};
  bool hasPosted = false;  ///< has a post, `post-<id>`, in the moment in which the emulator starts
};

/// How the emulator is set up; everything has a working default.
struct EmulatorOptions {
  enum class Certificate { valid, expired, wrongHost };
  /// How the token endpoint tells when a token expires.
  enum class TokenExpiry {
    seconds,  ///< `expires_in`
    date      ///< `expires_date`
  };

  /// TCP port on 127.0.0.1; 0 takes a free one.
  int port = 0;
  Certificate certificate = Certificate::valid;
  /// The servers' clock; the system's when empty. Called while the emulator serves, so it must not call the emulator.
  std::function<Date()> now{};
  std::chrono::seconds tokenLifetime = std::chrono::hours(1);
  TokenExpiry tokenExpiry = TokenExpiry::seconds;
  /// Whether `firebase-<user id>` signs that user in, creating the user when there is none.
  bool acceptsFirebaseUsers = true;
  /// The answer to a Firebase grant that carries no token.
  int statusWithoutFirebaseToken = 401;
  /// Answers 400 to requests that lack one of the ten headers every request of the app carries.
  bool requiresFixedHeaders = false;
  int deletionsPerMoment = 1;
  int visibilityUpgradesPerMoment = 1;
  /// How many requests are remembered; the oldest are forgotten.
  std::size_t recordedRequests = 1000;
  std::vector<EmulatorUser> users{{"alice", "alice", "Alice Arnaud", false},
                                  {"bob", "bob", "Bob Bellini", true},
                                  {"carol", "carol", "Carol Cruz", true},
                                  {"dave", "dave.d", "Dave Dupont", true}};
  /// Pairs of user ids. Dave is a friend of Alice's friends only.
  std::vector<std::pair<std::string, std::string>> friendships{
      {"alice", "bob"}, {"alice", "carol"}, {"bob", "carol"}, {"bob", "dave"}};
};

}  // namespace ZAK
