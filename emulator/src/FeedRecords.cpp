#include "Records.hpp"
#include "Text.hpp"

#include <algorithm>
#include <chrono>

namespace ZAK::EmulatorRecords {

using EmulatorText::dateText;
using nlohmann::json;

namespace {

constexpr std::size_t sampleSize = 3;

/// The user as `person`, without the keys that do not belong to the record.
json personWithout(const World& world, const std::string& userId, std::initializer_list<const char*> keys) {
  json record = person(world, userId, {});
  for (const char* key : keys) record.erase(key);
  return record;
}

json fofPerson(const World& world, const std::string& userId) { return personWithout(world, userId, {"status"}); }

json legacyUser(const World& world, const std::string& userId) {
  return personWithout(world, userId, {"status", "fullname"});
}

json legacyDate(Date date) {
  using namespace std::chrono;
  const auto second = floor<seconds>(date);
  return {{"_seconds", second.time_since_epoch().count()}, {"_nanoseconds", nanoseconds(date - second).count()}};
}

json legacyComment(const World& world, const Comment& comment) {
  const json user = legacyUser(world, comment.userId);
  return {{"id", comment.id},
          {"uid", comment.userId},
          {"user", user},
          {"creationDate", legacyDate(comment.postedAt)},
          {"text", comment.content},
          {"userName", user.at("username")}};
}

json legacyQuiblet(const World& world, const Quiblet& quiblet) {
  const json user = legacyUser(world, quiblet.userId);
  return {{"id", quiblet.id},
          {"uid", quiblet.userId},
          {"user", user},
          {"date", legacyDate(quiblet.postedAt)},
          {"emoji", quiblet.emoji},
          {"type", quiblet.isInstant ? "instant" : "emoji"},
          {"uri", mediaUrl(quiblet.media.bucket, quiblet.media.path)},
          {"userName", user.at("username")}};
}

json fofAuthor(const World& world, const std::string& userId, const std::string& reader) {
  json commonFriends = json::array();
  for (const std::string& id : world.commonFriends(reader, userId)) commonFriends.push_back(fofPerson(world, id));
  json record = fofPerson(world, userId);
  record["relationship"] = {{"commonFriends", std::move(commonFriends)}};
  return record;
}

json fofQuiblet(const World& world, const Quiblet& quiblet) {
  const json user = fofPerson(world, quiblet.userId);
  return {{"id", quiblet.id},
          {"user", {{"id", user.at("id")}, {"username", user.at("username")}}},
          {"media", media(quiblet.media)},
          {"emoji", quiblet.emoji},
          {"isInstant", quiblet.isInstant},
          {"postedAt", dateText(quiblet.postedAt)}};
}

/// The number of reactions, the latest of them, and the reader's own.
json fofQuiblets(const World& world, const std::vector<Quiblet>& quiblets, const std::string& reader) {
  json record{{"total", quiblets.size()}, {"sample", json::array()}};
  for (std::size_t i = quiblets.size() - std::min(quiblets.size(), sampleSize); i < quiblets.size(); ++i) {
    record["sample"].push_back(fofQuiblet(world, quiblets[i]));
  }
  for (const Quiblet& quiblet : quiblets) {
    if (quiblet.userId == reader) record["self"] = fofQuiblet(world, quiblet);
  }
  return record;
}

template <class Element>
json list(const World& world, const std::vector<Element>& elements, json (*record)(const World&, const Element&)) {
  json result = json::array();
  for (const Element& element : elements) result.push_back(record(world, element));
  return result;
}

void addPictures(json& record, const Picture& primary, const Picture& secondary) {
  record["photoURL"] = mediaUrl(primary.bucket, primary.path);
  record["imageHeight"] = primary.height;
  record["imageWidth"] = primary.width;
  record["secondaryPhotoURL"] = mediaUrl(secondary.bucket, secondary.path);
  record["secondaryImageHeight"] = secondary.height;
  record["secondaryImageWidth"] = secondary.width;
}

void addScreenshots(json& record, const World& world, const std::vector<Screenshot>& screenshots) {
  json ids = json::array();
  json full = json::array();
  for (const Screenshot& screenshot : screenshots) {
    ids.push_back(screenshot.userId);
    full.push_back({{"id", screenshot.id}, {"user", legacyUser(world, screenshot.userId)}});
  }
  record["screenshots"] = std::move(ids);
  record["screenshotsV2"] = std::move(full);
}

}  // namespace

json legacyPost(const World& world, const Post& post) {
  json record{{"id", post.id},
              {"user", legacyUser(world, post.userId)},
              {"notificationID", "notification-" + post.momentId},
              {"region", moment(post).at("region")},
              {"creationDate", legacyDate(post.createdAt)},
              {"takenAt", legacyDate(post.takenAt)},
              {"lateInSeconds", post.lateInSeconds},
              {"comment", list(world, post.comments, &legacyComment)},
              {"quiblets", list(world, post.quiblets, &legacyQuiblet)},
              {"visibility", post.visibility},
              {"retakeCounter", post.retakeCounter}};
  addPictures(record, post.primary, post.secondary);
  addScreenshots(record, world, post.screenshots);
  if (post.location) record["location"] = {{"_latitude", post.location->first}, {"_longitude", post.location->second}};
  if (post.caption) record["caption"] = *post.caption;
  return record;
}

json friendOfFriendPost(const World& world, const Post& post, const std::string& reader) {
  json record{{"id", post.id},
              {"user", fofAuthor(world, post.userId, reader)},
              {"moment", moment(post)},
              {"primary", media(post.primary)},
              {"secondary", media(post.secondary)},
              {"takenAt", dateText(post.takenAt)},
              {"postedAt", dateText(post.createdAt)},
              {"lateInSeconds", post.lateInSeconds},
              {"quiblets", fofQuiblets(world, post.quiblets, reader)}};
  if (post.location) record["location"] = {{"latitude", post.location->first}, {"longitude", post.location->second}};
  if (post.caption) record["caption"] = *post.caption;
  return record;
}

}  // namespace ZAK::EmulatorRecords
