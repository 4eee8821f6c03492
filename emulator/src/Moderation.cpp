#include "Call.hpp"
#include "Paging.hpp"
#include "Records.hpp"

#include <algorithm>
#include <utility>

namespace ZAK {

using nlohmann::json;

namespace {

/// A user whom the caller names, on whichever side of a block.
const std::string& otherUser(const Call& call, const std::string& id) {
  if (id == call.userId) throw Refusal(400, "this is the caller");
  const auto user = call.world.users.find(id);
  if (user == call.world.users.end() || !user->second.createdAt) throw Refusal(404, "there is no such person");
  return user->first;
}

/// Keeps the report; a later one of the same subject by the same user replaces it.
EmulatorResponse keepReport(Call& call, const json& body, const std::string& subject,
                            std::initializer_list<std::string_view> reasons) {
  const std::string reason = textField(body, "reason");
  if (std::find(reasons.begin(), reasons.end(), reason) == reasons.end()) throw Refusal(400, "reason is not known");
  if (body.contains("comment") && !body.at("comment").is_string()) throw Refusal(400, "comment must be a text");
  call.world.reports[{call.userId, subject}] = reason;
  return jsonResponse(json::object(), 201);
}

EmulatorResponse reportProfile(Call& call) {
  const json body = call.body({"userId", "reason"}, {"comment"});
  return keepReport(call, body, "profile " + otherUser(call, textField(body, "userId")),
                    {"repeated-friend-invites", "inappropriate-profile-photo", "inappropriate-username",
                     "inappropriate-quiblet", "impersonation", "spam", "other"});
}

EmulatorResponse reportPost(Call& call) {
  const json body = call.body({"postId", "reason"}, {"comment"});
  const Post& post = call.readablePost(textField(body, "postId"));
  return keepReport(call, body, "post " + post.id,
                    {"spam", "scam-or-untrue", "inappropriate-caption", "just-not-for-me", "nudity-or-sexual",
                     "violent-or-dangerous", "hate-speech-or-symbols", "suicide-or-self-harm", "other"});
}

json blockRecord(const Call& call, const std::string& userId) {
  return {{"userId", userId},
          {"blockedAt", EmulatorText::dateText(call.world.blocks.at({call.userId, userId}))},
          {"user", EmulatorRecords::person(call.world, userId, call.userId)}};
}

/// Those whom the caller blocks, the latest first.
EmulatorResponse listBlocked(Call& call) {
  std::vector<std::string> ids;
  for (const auto& [pair, since] : call.world.blocks) {
    if (pair.first == call.userId) ids.push_back(pair.second);
  }
  const auto since = [&](const std::string& id) { return call.world.blocks.at({call.userId, id}); };
  std::sort(ids.begin(), ids.end(),
            [&](const auto& a, const auto& b) { return std::pair(since(b), a) < std::pair(since(a), b); });
  return jsonResponse(collection(call, ids, [&](const std::string& id) { return blockRecord(call, id); }));
}

/// Ends what was between the two and hides them from each other. Blocking again changes nothing.
EmulatorResponse blockUser(Call& call) {
  const std::string& id = otherUser(call, textField(call.body({"blockedUserId"}), "blockedUserId"));
  call.world.blocks.try_emplace({call.userId, id}, call.now);
  call.world.endRelationship(call.userId, id);
  return jsonResponse(json::object(), 201);
}

EmulatorResponse unblockUser(Call& call) {
  if (call.world.blocks.erase({call.userId, call.variables.at("id")}) == 0) {
    throw Refusal(404, "this person is not blocked");
  }
  return jsonResponse(json::object());
}

}  // namespace

void addModerationRoutes(Router& router) {
  router.add("POST", "/moderation/reports/profile", &reportProfile);
  router.add("POST", "/moderation/reports/post", &reportPost);
  router.add("GET", "/moderation/block-users", &listBlocked);
  router.add("POST", "/moderation/block-users", &blockUser);
  router.add("DELETE", "/moderation/block-users/{id}", &unblockUser);
}

}  // namespace ZAK
