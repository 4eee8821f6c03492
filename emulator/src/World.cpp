#include "World.hpp"

#include "Text.hpp"

#include <algorithm>

namespace ZAK {

namespace {

Post seedPost(EmulatorEnvironment environment, const std::string& userId, Date now) {
  const std::string folder = "Photos/" + userId + "/post/";
  const std::string bucket = bucketName(environment);
  Post post;
  post.id = "post-" + userId;
  post.userId = userId;
  post.momentId = World::moment(now).id;
  post.visibility = {"friends", "friends-of-friends"};
  post.caption = "Hello from " + userId;
  post.primary = {bucket, folder + "back.jpg", 1500, 2000};
  post.secondary = {bucket, folder + "front.jpg", 1500, 2000};
  post.takenAt = post.createdAt = now;
  return post;
}

bool holds(const std::vector<std::string>& texts, std::string_view text) {
  return std::find(texts.begin(), texts.end(), text) != texts.end();
}

}  // namespace

World::World(EmulatorEnvironment environment_, const EmulatorOptions& options, Date now) : environment(environment_) {
  for (const EmulatorUser& user : options.users) {
    users[user.id] = {user.id, user.username, user.fullname};
    if (!user.hasPosted) continue;
    Post post = seedPost(environment, user.id, now);
    posts[post.id] = std::move(post);
  }
  for (const auto& [a, b] : options.friendships) makeFriends(a, b);
}

Moment World::moment(Date now) {
  return {"moment-" + EmulatorText::dayText(now), "europe-west", std::chrono::floor<std::chrono::days>(now)};
}

std::string World::nextId(std::string_view kind) { return std::string(kind) + "-" + std::to_string(++lastId_); }

User& World::ensureUser(const std::string& id) { return users.try_emplace(id, User{id, id, {}}).first->second; }

void World::makeFriends(const std::string& a, const std::string& b) {
  relationships[{a, b}] = "accepted";
  relationships[{b, a}] = "accepted";
}

bool World::areFriends(const std::string& a, const std::string& b) const {
  const auto found = relationships.find({a, b});
  return found != relationships.end() && found->second == "accepted";
}

bool World::haveCommonFriend(const std::string& a, const std::string& b) const {
  return std::any_of(users.begin(), users.end(),
                     [&](const auto& user) { return areFriends(a, user.first) && areFriends(user.first, b); });
}

Post* World::postOf(const std::string& userId, const std::string& momentId) {
  const auto found = std::find_if(posts.begin(), posts.end(), [&](const auto& entry) {
    return entry.second.userId == userId && entry.second.momentId == momentId;
  });
  return found == posts.end() ? nullptr : &found->second;
}

bool World::mayRead(const std::string& userId, const Post& post) const {
  return userId == post.userId || areFriends(userId, post.userId) || holds(post.visibility, "public") ||
         (holds(post.visibility, "friends-of-friends") && haveCommonFriend(userId, post.userId));
}

std::string bucketName(EmulatorEnvironment environment) {
  return environment == EmulatorEnvironment::production ? "zolvi-photos" : "zolvi-photos-dev";
}

}  // namespace ZAK
