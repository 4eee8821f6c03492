#include "Archive.hpp"

#include <algorithm>
#include <tuple>

namespace ZAK {

namespace {

Post pastPost(const World& world, const std::string& userId, Date moment, bool isLate) {
  const std::string day = EmulatorText::dayText(moment);
  const std::string folder = "Photos/" + userId + "/post/" + day + "/";
  const std::string bucket = bucketName(world.environment);
  const std::chrono::seconds delay = isLate ? std::chrono::hours(3) : std::chrono::minutes(1);
  Post post;
  post.id = "memory-" + userId + "-" + day;
  post.userId = userId;
  post.momentId = World::moment(moment).id;
  post.visibility = {"friends"};
  post.isLate = isLate;
  post.lateInSeconds = isLate ? delay.count() : 0;
  post.primary = {bucket, folder + "back.jpg", 1500, 2000};
  post.secondary = {bucket, folder + "front.jpg", 1500, 2000};
  post.takenAt = post.createdAt = moment + delay;
  return post;
}

}  // namespace

Archive& archiveOf(Call& call) {
  const auto [entry, isNew] = call.world.archives.try_emplace(call.userId);
  Archive& archive = entry->second;
  const auto& users = call.options.users;
  const auto isCaller = [&](const EmulatorUser& user) { return user.id == call.userId; };
  if (!isNew || std::none_of(users.begin(), users.end(), isCaller)) return archive;
  const Date today = World::moment(call.world.startedAt).startsAt;
  for (int day = 1; archive.posts.size() < call.options.pastPosts; ++day) {
    if (day % 6 == 0) continue;
    Post post = pastPost(call.world, call.userId, today - std::chrono::days(day), day % 6 == 3);
    archive.posts[post.id] = std::move(post);
  }
  return archive;
}

std::vector<const Post*> pastPosts(Call& call) {
  std::vector<const Post*> result;
  for (const auto& [id, post] : archiveOf(call).posts) result.push_back(&post);
  const std::string current = World::moment(call.now).id;
  for (const auto& [id, post] : call.world.posts) {
    if (post.userId == call.userId && post.momentId != current) result.push_back(&post);
  }
  std::sort(result.begin(), result.end(), &isNewer);
  return result;
}

bool isNewer(const Post* a, const Post* b) { return std::tie(a->createdAt, a->id) > std::tie(b->createdAt, b->id); }

}  // namespace ZAK
