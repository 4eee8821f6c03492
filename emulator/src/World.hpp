#pragma once

#include "Bucket.hpp"
#include "PhoneVerification.hpp"
#include "Preferences.hpp"
#include "TokenStore.hpp"

#include <zvapikit/emulator/EmulatorOptions.hpp>
#include <zvapikit/emulator/EmulatorRequest.hpp>

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ZAK {

/// An uploaded file, named as clients name it.
struct Picture {
  std::string bucket;
  std::string path;
  std::int64_t width;
  std::int64_t height;
};

struct User {
  std::string id;
  std::string username;
  std::string fullname;
  std::string phoneNumber{};
  std::string biography{};
  std::string location{};
  std::string region{"europe-west"};
  std::optional<Picture> profilePicture{};
  std::map<std::string, Picture> quiblets{};                            ///< the stored selfies by emoji
  std::map<std::string, std::map<std::string, std::string>> devices{};  ///< by device id, what the app told by its key
  std::optional<Date> createdAt{};   ///< absent until the user makes a profile; unknown to others till then
  std::optional<Date> deletionAt{};  ///< present while the account's deletion is pending
};

/// What a user is to another, as one of the two sees it: `accepted` for friends, `sent` where the one who looks asked,
/// `pending` where the other did.
struct Relationship {
  std::string status;
  Date createdAt;
  Date updatedAt;
};

struct Comment {
  std::string id;
  std::string userId;
  std::string content;
  Date postedAt;
};

struct Quiblet {
  std::string id;
  std::string userId;
  std::string emoji;
  bool isInstant;
  Picture media;
  Date postedAt;
};

struct Screenshot {
  std::string id;
  std::string userId;
};

struct Post {
  std::string id;
  std::string userId;
  std::string momentId;
  std::vector<std::string> visibility;
  std::optional<std::pair<double, double>> location;  ///< latitude, longitude
  std::optional<std::string> caption;
  std::int64_t retakeCounter = 0;
  bool isLate = false;
  std::int64_t lateInSeconds = 0;
  Picture primary;
  Picture secondary;
  std::vector<Quiblet> quiblets;
  std::vector<Comment> comments;
  std::vector<Screenshot> screenshots;
  Date takenAt;
  Date createdAt;
};

/// The video of one year's posts: asked for, then queued, then made.
struct Recap {
  enum class Step { none, queued, processing, done };

  Step step = Step::none;
  int queuePosition = 0;  ///< from 1 while queued
};

/// What a user has from before.
struct Archive {
  std::map<std::string, Post> posts;  ///< of days before the emulator started
  std::map<int, Recap> recaps;        ///< by year
};

/// The moment in which everybody posts: one a UTC day, the same in all regions.
struct Moment {
  std::string id;
  std::string region;
  Date startsAt;
};

/// What a user did in one moment, against the quotas.
struct Usage {
  int deletions = 0;
  int visibilityUpgrades = 0;
  int regionChanges = 0;
};

/// The whole state of one environment.
struct World {
  World(EmulatorEnvironment environment_, const EmulatorOptions& options, Date now);

  EmulatorEnvironment environment;
  Date startedAt;
  TokenStore tokens;
  std::map<std::string, std::string> firebaseTokens;  ///< to the user's id
  std::map<std::string, User> users;
  /// What the first user is to the second, as the first sees it; no entry: strangers.
  std::map<std::pair<std::string, std::string>, Relationship> relationships;
  std::map<std::pair<std::string, std::string>, Date> blocks;          ///< since when, by blocker and blocked
  std::set<std::pair<std::string, std::string>> hiddenSuggestions;     ///< to whom, and who is not suggested
  std::map<std::pair<std::string, std::string>, std::string> reports;  ///< the reason, by reporter and what
  std::map<std::string, Post> posts;
  std::map<std::pair<std::string, std::string>, Usage> usage;  ///< by user and moment
  std::map<std::string, Preferences> preferences;              ///< by user
  std::map<std::string, Archive> archives;                     ///< by user; `archiveOf` fills them
  std::map<std::string, PhoneVerification> verifications;      ///< by request id
  Bucket bucket;
  std::size_t analyticsEvents = 0;

  [[nodiscard]] static Moment moment(Date now);

  /// An id that was not there before: `post-1`.
  [[nodiscard]] std::string nextId(std::string_view kind);
  /// The user, made on first sight.
  User& ensureUser(const std::string& id);
  /// The person as the reader may meet them; null for nobody, for one without a profile, and behind a block.
  [[nodiscard]] const User* person(const std::string& id, const std::string& reader) const;
  void makeFriends(const std::string& a, const std::string& b, Date now);
  void requestFriendship(const std::string& sender, const std::string& receiver, Date now);
  void endRelationship(const std::string& a, const std::string& b);
  /// Null for strangers.
  [[nodiscard]] const Relationship* relationship(const std::string& userId, const std::string& otherId) const;
  /// The users whom this user sees under the status, by id.
  [[nodiscard]] std::vector<std::string> related(const std::string& userId, std::string_view status) const;
  [[nodiscard]] std::vector<std::string> commonFriends(const std::string& a, const std::string& b) const;
  /// Whether either blocks the other.
  [[nodiscard]] bool areApart(const std::string& a, const std::string& b) const;
  [[nodiscard]] bool areFriends(const std::string& a, const std::string& b) const;
  [[nodiscard]] bool haveCommonFriend(const std::string& a, const std::string& b) const;
  /// The user's post of the moment; null when there is none.
  [[nodiscard]] Post* postOf(const std::string& userId, const std::string& momentId);
  /// The selfie that stands for the user's reaction: the one stored for the emoji, else a made-up one.
  [[nodiscard]] Picture selfie(const std::string& userId, const std::string& emoji) const;
  [[nodiscard]] bool mayRead(const std::string& userId, const Post& post) const;

 private:
  std::int64_t lastId_ = 0;
};

/// The storage bucket of an environment.
[[nodiscard]] std::string bucketName(EmulatorEnvironment environment);

}  // namespace ZAK
