#include "Call.hpp"
#include "Records.hpp"

#include <algorithm>
#include <cmath>

namespace ZAK {

using nlohmann::json;

namespace {

/// How widely a visibility opens a post; the order tells an upgrade from a downgrade.
int reach(const std::string& visibility) {
  if (visibility == "friends") return 0;
  if (visibility == "friends-of-friends") return 1;
  if (visibility == "public") return 2;
  throw Refusal(400, "visibility is not known");
}

int reach(const std::vector<std::string>& visibility) {
  int widest = 0;
  for (const std::string& value : visibility) widest = std::max(widest, reach(value));
  return widest;
}

EmulatorResponse postResponse(const Call& call, const Post& post, int status = 200) {
  return jsonResponse(EmulatorRecords::post(call.world, post, call.userId), status);
}

/// The caller's post of the current moment.
Post& myPost(Call& call) {
  if (Post* const post = call.world.postOf(call.userId, World::moment(call.now).id)) return *post;
  const auto& posts = call.world.posts;
  const auto isMine = [&](const auto& entry) { return entry.second.userId == call.userId; };
  if (std::any_of(posts.begin(), posts.end(), isMine)) {
    throw Refusal(403, "the post belongs to an earlier moment", "old-post");
  }
  throw Refusal(404, "there is no post");
}

/// The post that the query names together with its author.
Post& queriedPost(Call& call) {
  Post& post = call.readablePost(call.queryValue("postId"));
  if (post.userId != call.queryValue("postUserId")) throw Refusal(404, "the post is another user's");
  return post;
}

std::optional<std::pair<double, double>> optionalLocation(const json& body) {
  if (!body.contains("location")) return std::nullopt;
  const json& location = body.at("location");
  checkKeys(location, {"latitude", "longitude"});
  const std::pair<double, double> place{numberField(location, "latitude"), numberField(location, "longitude")};
  if (std::abs(place.first) > 90 || std::abs(place.second) > 180) throw Refusal(400, "the location is not on earth");
  return place;
}

EmulatorResponse createPost(Call& call) {
  const json body =
      call.body({"takenAt", "backCamera", "frontCamera", "isLate", "visibility", "retakeCounter"}, {"location"});
  const Moment moment = World::moment(call.now);
  Post post;
  post.userId = call.userId;
  post.momentId = moment.id;
  post.visibility = textsField(body, "visibility");
  if (post.visibility.empty()) throw Refusal(400, "visibility is empty");
  (void)reach(post.visibility);
  post.location = optionalLocation(body);
  post.retakeCounter = countField(body, "retakeCounter");
  post.isLate = flagField(body, "isLate");
  post.primary = pictureField(body, "backCamera");
  post.secondary = pictureField(body, "frontCamera");
  post.takenAt = dateField(body, "takenAt");
  post.createdAt = call.now;
  const auto lateness = std::chrono::duration_cast<std::chrono::seconds>(post.takenAt - moment.startsAt).count();
  if (post.isLate) post.lateInSeconds = std::max<std::int64_t>(lateness, 0);
  if (call.world.postOf(call.userId, moment.id)) throw Refusal(409, "there is a post already", "user-already-posted");
  post.id = call.world.nextId("post");
  const Post& stored = call.world.posts[post.id] = post;
  return postResponse(call, stored, 201);
}

EmulatorResponse readPost(Call& call) {
  return jsonResponse({{"id", call.readablePost(call.variables.at("postId")).id}});
}

EmulatorResponse deleteMyPost(Call& call) {
  const std::string id = myPost(call).id;
  if (call.usage().deletions >= call.options.deletionsPerMoment) {
    throw Refusal(403, "too many posts were deleted", "too-many-deletions");
  }
  ++call.usage().deletions;
  call.world.posts.erase(id);
  return emptyResponse();
}

EmulatorResponse changeCaption(Call& call) {
  const json body = call.body({"caption"});
  if (!body.at("caption").is_string()) throw Refusal(400, "caption must be a text");
  Post& post = myPost(call);
  post.caption = body.at("caption").get<std::string>();
  return postResponse(call, post);
}

EmulatorResponse changeVisibility(Call& call) {
  const std::string visibility = textField(call.body({"visibility"}), "visibility");
  const int wanted = reach(visibility);
  Post& post = myPost(call);
  if (wanted > reach(post.visibility)) {
    if (call.usage().visibilityUpgrades >= call.options.visibilityUpgradesPerMoment) {
      throw Refusal(403, "the post was opened too often", "too-many-visibility-upgrades");
    }
    ++call.usage().visibilityUpgrades;
  }
  post.visibility = {visibility};
  return postResponse(call, post);
}

EmulatorResponse notifyScreenshot(Call& call) {
  Post& post = queriedPost(call);
  post.screenshots.push_back({call.world.nextId("screenshot"), call.userId});
  return postResponse(call, post, 201);
}

/// Removes the elements with these ids; each must be the caller's, or lie on the caller's post.
template <class Element>
void removeReactions(const Call& call, const Post& post, std::vector<Element>& elements,
                     const std::vector<std::string>& ids) {
  const auto named = [&](const Element& element) { return std::find(ids.begin(), ids.end(), element.id) != ids.end(); };
  for (const std::string& id : ids) {
    const auto removable = [&](const Element& element) {
      return element.id == id && (element.userId == call.userId || post.userId == call.userId);
    };
    if (std::none_of(elements.begin(), elements.end(), removable)) throw Refusal(404, "there is no " + id);
  }
  std::erase_if(elements, named);
}

EmulatorResponse addComment(Call& call) {
  const std::string content = textField(call.body({"content"}), "content");
  Post& post = queriedPost(call);
  post.comments.push_back({call.world.nextId("comment"), call.userId, content, call.now});
  return jsonResponse(EmulatorRecords::comment(call.world, post.comments.back(), call.userId), 201);
}

EmulatorResponse deleteComments(Call& call) {
  const auto ids = textsField(call.body({"commentIds"}), "commentIds");
  Post& post = queriedPost(call);
  removeReactions(call, post, post.comments, ids);
  return emptyResponse();
}

/// Puts the caller's reaction on the post; a user has one of each emoji and one instant.
EmulatorResponse putQuiblet(Call& call, Post& post, Quiblet quiblet) {
  std::erase_if(post.quiblets, [&](const Quiblet& other) {
    return other.userId == quiblet.userId && other.isInstant == quiblet.isInstant &&
           (quiblet.isInstant || other.emoji == quiblet.emoji);
  });
  post.quiblets.push_back(std::move(quiblet));
  return jsonResponse(EmulatorRecords::quiblet(call.world, post.quiblets.back(), call.userId));
}

EmulatorResponse addQuiblet(Call& call) {
  const std::string emoji = textField(call.body({"emoji"}), "emoji");
  Post& post = queriedPost(call);
  Picture selfie = call.world.selfie(call.userId, emoji);
  return putQuiblet(call, post, {call.world.nextId("quiblet"), call.userId, emoji, false, std::move(selfie), call.now});
}

EmulatorResponse addInstantQuiblet(Call& call) {
  Picture media = pictureField(call.body({"media"}), "media");
  Post& post = queriedPost(call);
  return putQuiblet(call, post, {call.world.nextId("quiblet"), call.userId, "⚡", true, std::move(media), call.now});
}

EmulatorResponse deleteQuiblets(Call& call) {
  const auto ids = textsField(call.body({"quibletIds"}), "quibletIds");
  Post& post = queriedPost(call);
  removeReactions(call, post, post.quiblets, ids);
  return emptyResponse();
}

}  // namespace

void addContentRoutes(Router& router) {
  router.add("POST", "/content/posts", &createPost);
  router.add("DELETE", "/content/posts", &deleteMyPost);
  router.add("GET", "/content/posts/{postId}", &readPost);
  router.add("PATCH", "/content/posts/caption", &changeCaption);
  router.add("PATCH", "/content/posts/visibility", &changeVisibility);
  router.add("POST", "/content/screenshots", &notifyScreenshot);
  router.add("POST", "/content/comments", &addComment);
  router.add("DELETE", "/content/comments", &deleteComments);
  router.add("PUT", "/content/quiblets", &addQuiblet);
  router.add("PUT", "/content/quiblets/instant", &addInstantQuiblet);
  router.add("DELETE", "/content/quiblets", &deleteQuiblets);
}

}  // namespace ZAK
