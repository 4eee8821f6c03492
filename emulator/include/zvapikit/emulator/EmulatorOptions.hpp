#pragma once

#include <zvapikit/json/Date.hpp>

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace ZAK {

/// A user who exists when the emulator starts. The Firebase token `firebase-ID` signs the user of the identifier `ID`
/// in.
///
/// Thread safety: as a standard container.
struct EmulatorUser {
  std::string id{};           ///< identifier of the user
  std::string username{};     ///< unique name
  std::string fullname{};     ///< as other users see it
  bool hasPosted = false;     ///< has a post, `post-ID`, in the moment in which the emulator starts
  std::string phoneNumber{};  ///< in E.164 form
};

/// How the emulator is set up; everything has a working default.
///
/// Thread safety: as a standard container.
struct EmulatorOptions {
  /// What the servers show of themselves. A client of the kit accepts the first kind alone.
  enum class Certificate {
    valid,     ///< signed by the emulator's authority, for the servers' names
    expired,   ///< the same, but no longer valid
    wrongHost  ///< the same, but for another name
  };
  /// How the token endpoint tells when a token expires.
  enum class TokenExpiry {
    seconds,  ///< `expires_in`
    date      ///< `expires_date`
  };

  /// TCP port on 127.0.0.1; 0 takes a free one.
  int port = 0;
  /// Which certificate the servers show.
  Certificate certificate = Certificate::valid;
  /// The servers' clock; the system's when empty. Called while the emulator serves, so it must not call the emulator.
  std::function<Date()> now{};
  /// How long an access token is accepted.
  std::chrono::seconds tokenLifetime = std::chrono::hours(1);
  /// How the token endpoint tells so.
  TokenExpiry tokenExpiry = TokenExpiry::seconds;
  /// Whether the Firebase token `firebase-ID` signs the user `ID` in, creating the user when there is none.
  bool acceptsFirebaseUsers = true;
  /// The answer to a Firebase grant that carries no token.
  int statusWithoutFirebaseToken = 401;
  /// Answers 400 to requests that lack one of the ten headers every request of the app carries.
  bool requiresFixedHeaders = false;
  /// Posts that a user may delete in a moment.
  int deletionsPerMoment = 1;
  /// How often a user may open the post to more people in a moment.
  int visibilityUpgradesPerMoment = 1;
  /// How often a user may change the region in a moment.
  int regionChangesPerMoment = 1;
  /// Friends that a user may have.
  std::size_t friendsPerUser = 1000;
  /// Friend requests of one sender that may wait for their answer.
  std::size_t pendingRequestsSent = 50;
  /// Friend requests that may wait for the answer of one receiver.
  std::size_t pendingRequestsReceived = 100;
  /// Elements on a page of a paged list; at least 1.
  std::size_t pageSize = 20;
  /// How many posts each of `users` has from days before the emulator started: on five days of six, one of them late.
  std::size_t pastPosts = 30;
  /// The code that every phone is sent.
  std::string phoneCode = "123456";
  /// How long it is accepted.
  std::chrono::seconds phoneCodeLifetime = std::chrono::minutes(5);
  /// Most bytes that an upload may have.
  std::size_t uploadLimit = std::size_t{10} << 20;
  /// Bytes of a recap video.
  std::size_t videoSize = 400'000;
  /// How many requests are remembered; the oldest are forgotten.
  std::size_t recordedRequests = 1000;
  /// Who is there at the start.
  std::vector<EmulatorUser> users{{"alice", "alice", "Alice Arnaud", false, "+33639980101"},
                                  {"bob", "bob", "Bob Bellini", true, "+33639980102"},
                                  {"carol", "carol", "Carol Cruz", true, "+447700900103"},
                                  {"dave", "dave.d", "Dave Dupont", true, "+447700900104"}};
  /// Pairs of user ids. Dave is a friend of Alice's friends only.
  std::vector<std::pair<std::string, std::string>> friendships{
      {"alice", "bob"}, {"alice", "carol"}, {"bob", "carol"}, {"bob", "dave"}};
  /// Whether sixteen more people live around `users`, with friendships, posts, reactions and friend requests. None of
  /// them is a friend of Alice.
  bool hasNeighbours = true;
};

}  // namespace ZAK
