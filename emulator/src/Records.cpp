#include "Records.hpp"

#include "Hosts.hpp"
#include "Text.hpp"

namespace ZAK::EmulatorRecords {

using EmulatorText::dateText;
using nlohmann::json;

namespace {

constexpr std::size_t sampleSize = 5;

json screenshot(const World& world, const Screenshot& screenshot, const std::string& reader) {
  return {{"id", screenshot.id}, {"user", person(world, screenshot.userId, reader)}};
}

/// The latest elements with the count of all.
template <class Element>
json sample(const World& world, const std::vector<Element>& elements, const std::string& reader,
            json (*record)(const World&, const Element&, const std::string&)) {
  json shown = json::array();
  for (std::size_t i = elements.size() - std::min(elements.size(), sampleSize); i < elements.size(); ++i) {
    shown.push_back(record(world, elements[i], reader));
  }
  return {{"sample", std::move(shown)}, {"total", elements.size()}};
}

}  // namespace

std::string mediaUrl(const std::string& bucket, const std::string& path) {
  return "https://" + std::string(storageHost) + "/" + bucket + "/" + EmulatorText::percentEncodedPath(path);
}

std::string videoPath(const std::string& userId, int year) {
  return "Videos/" + userId + "/recap-" + std::to_string(year) + ".mp4";
}

json media(const Picture& picture) {
  return {{"url", mediaUrl(picture.bucket, picture.path)},
          {"width", static_cast<double>(picture.width)},
          {"height", static_cast<double>(picture.height)}};
}

json moment(const Post& post) { return {{"id", post.momentId}, {"region", World::moment(post.createdAt).region}}; }

json person(const World& world, const std::string& userId, const std::string& reader) {
  const auto user = world.users.find(userId);
  json record{{"id", userId}, {"username", user == world.users.end() ? userId : user->second.username}};
  if (user != world.users.end() && !user->second.fullname.empty()) record["fullname"] = user->second.fullname;
  if (user != world.users.end() && user->second.profilePicture) {
    record["profilePicture"] = media(*user->second.profilePicture);
  }
  if (const Relationship* const found = world.relationship(reader, userId)) record["status"] = found->status;
  return record;
}

json comment(const World& world, const Comment& comment, const std::string& reader) {
  return {{"id", comment.id},
          {"user", person(world, comment.userId, reader)},
          {"postedAt", dateText(comment.postedAt)},
          {"content", comment.content}};
}

json quiblet(const World& world, const Quiblet& quiblet, const std::string& reader) {
  return {{"id", quiblet.id},
          {"user", person(world, quiblet.userId, reader)},
          {"emoji", quiblet.emoji},
          {"isInstant", quiblet.isInstant},
          {"media", media(quiblet.media)},
          {"postedAt", dateText(quiblet.postedAt)}};
}

json post(const World& world, const Post& post, const std::string& reader) {
  json record{{"id", post.id},
              {"user", person(world, post.userId, reader)},
              {"moment", moment(post)},
              {"visibility", post.visibility},
              {"retakeCounter", post.retakeCounter},
              {"isLate", post.isLate},
              {"lateInSeconds", post.lateInSeconds},
              {"primary", media(post.primary)},
              {"secondary", media(post.secondary)},
              {"quiblets", sample(world, post.quiblets, reader, &quiblet)},
              {"comments", sample(world, post.comments, reader, &comment)},
              {"screenshots", sample(world, post.screenshots, reader, &screenshot)},
              {"takenAt", dateText(post.takenAt)},
              {"createdAt", dateText(post.createdAt)}};
  if (post.location) record["location"] = {{"latitude", post.location->first}, {"longitude", post.location->second}};
  if (post.caption) record["caption"] = *post.caption;
  return record;
}

}  // namespace ZAK::EmulatorRecords
