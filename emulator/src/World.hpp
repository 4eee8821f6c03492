#pragma once

#include "TokenStore.hpp"

#include <zvapikit/emulator/EmulatorOptions.hpp>
#include <zvapikit/emulator/EmulatorRequest.hpp>

#include <cstdint>
#include <map>
#include <optional>
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

/// The moment in which everybody posts: one a UTC day.
struct Moment {
  std::string id;
  std::string region;
  Date startsAt;
};

/// What a user did in one moment, against the quotas.
struct Usage {
  int deletions = 0;
  int visibilityUpgrades = 0;
};

/// The whole state of one environment.
struct World {
  World(EmulatorEnvironment environment_, const EmulatorOptions& options, Date now);

  EmulatorEnvironment environment;
  TokenStore tokens;
  std::map<std::string, std::string> firebaseTokens;  ///< to the user's id
  std::map<std::string, User> users;
  /// What the first user is to the second, as the first sees it; no entry: strangers.
  std::map<std::pair<std::string, std::string>, std::string> relationships;
  std::map<std::string, Post> posts;
  std::map<std::pair<std::string, std::string>, Usage> usage;  ///< by user and moment

  [[nodiscard]] static Moment moment(Date now);

  /// An id that was not there before: `post-1`.
  [[nodiscard]] std::string nextId(std::string_view kind);
  /// The user, made on first sight.
  User& ensureUser(const std::string& id);
  void makeFriends(const std::string& a, const std::string& b);
  [[nodiscard]] bool areFriends(const std::string& a, const std::string& b) const;
  [[nodiscard]] bool haveCommonFriend(const std::string& a, const std::string& b) const;
  /// The user's post of the moment; null when there is none.
  [[nodiscard]] Post* postOf(const std::string& userId, const std::string& momentId);
  [[nodiscard]] bool mayRead(const std::string& userId, const Post& post) const;

 private:
  std::int64_t lastId_ = 0;
};

/// The storage bucket of an environment.
[[nodiscard]] std::string bucketName(EmulatorEnvironment environment);

}  // namespace ZAK
