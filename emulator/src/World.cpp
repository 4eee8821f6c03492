#include "World.hpp"

#include "Seed.hpp"
#include "Text.hpp"

#include <algorithm>

namespace ZAK {

namespace {

bool holds(const std::vector<std::string>& texts, std::string_view text) {
  return std::find(texts.begin(), texts.end(), text) != texts.end();
}

}  // namespace

World::World(EmulatorEnvironment environment_, const EmulatorOptions& options, Date now)
    : environment(environment_), startedAt(now) {
  seed(*this, options, now);
}

Moment World::moment(Date now) {
  return {"moment-" + EmulatorText::dayText(now), "europe-west", std::chrono::floor<std::chrono::days>(now)};
}

std::string World::nextId(std::string_view kind) { return std::string(kind) + "-" + std::to_string(++lastId_); }

User& World::ensureUser(const std::string& id) { return users.try_emplace(id, User{id, id, {}}).first->second; }

const User* World::person(const std::string& id, const std::string& reader) const {
  const auto found = users.find(id);
  return found == users.end() || !found->second.createdAt || areApart(id, reader) ? nullptr : &found->second;
}

void World::makeFriends(const std::string& a, const std::string& b, Date now) {
  for (const auto& pair : {std::pair(a, b), std::pair(b, a)}) {
    Relationship& relationship = relationships.try_emplace(pair, Relationship{{}, now, now}).first->second;
    relationship.status = "accepted";
    relationship.updatedAt = now;
  }
}

void World::requestFriendship(const std::string& sender, const std::string& receiver, Date now) {
  relationships[{sender, receiver}] = {"sent", now, now};
  relationships[{receiver, sender}] = {"pending", now, now};
}

void World::endRelationship(const std::string& a, const std::string& b) {
  relationships.erase({a, b});
  relationships.erase({b, a});
}

const Relationship* World::relationship(const std::string& userId, const std::string& otherId) const {
  const auto found = relationships.find({userId, otherId});
  return found == relationships.end() ? nullptr : &found->second;
}

std::vector<std::string> World::related(const std::string& userId, std::string_view status) const {
  std::vector<std::string> ids;
  for (auto entry = relationships.lower_bound({userId, {}});
       entry != relationships.end() && entry->first.first == userId; ++entry) {
    if (entry->second.status == status) ids.push_back(entry->first.second);
  }
  return ids;
}

std::vector<std::string> World::commonFriends(const std::string& a, const std::string& b) const {
  std::vector<std::string> ids = related(a, "accepted");
  std::erase_if(ids, [&](const std::string& id) { return !areFriends(id, b); });
  return ids;
}

bool World::areApart(const std::string& a, const std::string& b) const {
  return blocks.contains({a, b}) || blocks.contains({b, a});
}

bool World::areFriends(const std::string& a, const std::string& b) const {
  const Relationship* const found = relationship(a, b);
  return found && found->status == "accepted";
}

bool World::haveCommonFriend(const std::string& a, const std::string& b) const { return !commonFriends(a, b).empty(); }

Post* World::postOf(const std::string& userId, const std::string& momentId) {
  const auto found = std::find_if(posts.begin(), posts.end(), [&](const auto& entry) {
    return entry.second.userId == userId && entry.second.momentId == momentId;
  });
  return found == posts.end() ? nullptr : &found->second;
}

bool World::mayRead(const std::string& userId, const Post& post) const {
  if (areApart(userId, post.userId)) return false;
  return userId == post.userId || areFriends(userId, post.userId) || holds(post.visibility, "public") ||
         (holds(post.visibility, "friends-of-friends") && haveCommonFriend(userId, post.userId));
}

Picture World::selfie(const std::string& userId, const std::string& emoji) const {
  const auto user = users.find(userId);
  if (user != users.end()) {
    const auto stored = user->second.quiblets.find(emoji);
    if (stored != user->second.quiblets.end()) return stored->second;
  }
  return {bucketName(environment), "Photos/" + userId + "/quiblet/" + emoji + ".jpg", 500, 500};
}

std::string bucketName(EmulatorEnvironment environment) {
  return environment == EmulatorEnvironment::production ? "zolvi-photos" : "zolvi-photos-dev";
}

}  // namespace ZAK
