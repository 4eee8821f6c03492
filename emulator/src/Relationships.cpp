#include "Call.hpp"
#include "Paging.hpp"
#include "Records.hpp"

#include <algorithm>
#include <map>
#include <utility>

namespace ZAK {

using nlohmann::json;

namespace {

json record(const Call& call, const std::string& userId) {
  json result = EmulatorRecords::person(call.world, userId, call.userId);
  result["mutualFriends"] = call.world.commonFriends(call.userId, userId).size();
  if (const Relationship* const relationship = call.world.relationship(call.userId, userId)) {
    result["createdAt"] = EmulatorText::dateText(relationship->createdAt);
    result["updatedAt"] = EmulatorText::dateText(relationship->updatedAt);
  }
  return result;
}

EmulatorResponse listResponse(const Call& call, const std::vector<std::string>& ids) {
  return jsonResponse(collection(call, ids, [&](const std::string& id) { return record(call, id); }));
}

/// Those whom the caller sees under the status, the latest first.
EmulatorResponse listRelated(const Call& call, std::string_view status) {
  std::vector<std::string> ids = call.world.related(call.userId, status);
  const auto since = [&](const std::string& id) { return call.world.relationship(call.userId, id)->updatedAt; };
  std::sort(ids.begin(), ids.end(),
            [&](const auto& a, const auto& b) { return std::pair(since(b), a) < std::pair(since(a), b); });
  return listResponse(call, ids);
}

EmulatorResponse listFriends(Call& call) { return listRelated(call, "accepted"); }
EmulatorResponse listSent(Call& call) { return listRelated(call, "sent"); }
EmulatorResponse listReceived(Call& call) { return listRelated(call, "pending"); }

/// Friends of friends to whom the caller is nothing yet; those with the most common friends first.
std::vector<std::string> suggestions(const Call& call) {
  const World& world = call.world;
  std::map<std::string, std::size_t> common;
  for (const std::string& friendId : world.related(call.userId, "accepted")) {
    for (const std::string& id : world.related(friendId, "accepted")) ++common[id];
  }
  std::vector<std::string> ids;
  for (const auto& [id, count] : common) {
    if (id == call.userId || world.relationship(call.userId, id) || !world.person(id, call.userId) ||
        world.hiddenSuggestions.contains({call.userId, id})) {
      continue;
    }
    ids.push_back(id);
  }
  std::sort(ids.begin(), ids.end(),
            [&](const auto& a, const auto& b) { return std::pair(common[b], a) < std::pair(common[a], b); });
  return ids;
}

EmulatorResponse listSuggestions(Call& call) { return listResponse(call, suggestions(call)); }

EmulatorResponse hideSuggestion(Call& call) {
  const std::string& id = call.variables.at("id");
  const auto ids = suggestions(call);
  if (std::find(ids.begin(), ids.end(), id) == ids.end()) throw Refusal(404, "this person is not suggested");
  call.world.hiddenSuggestions.insert({call.userId, id});
  return jsonResponse(json::object());
}

EmulatorResponse listCommonFriends(Call& call) {
  const User& other = call.person(call.variables.at("otherUserId"));
  const auto ids = call.world.commonFriends(call.userId, other.id);
  return jsonResponse(collection(
      call, ids, [&](const std::string& id) { return EmulatorRecords::person(call.world, id, call.userId); }));
}

EmulatorResponse removeFriend(Call& call) {
  const std::string& id = call.variables.at("id");
  if (!call.world.areFriends(call.userId, id)) throw Refusal(404, "this person is no friend");
  call.world.endRelationship(call.userId, id);
  return jsonResponse(json::object());
}

void checkFriendLimits(const Call& call, const std::string& otherId) {
  const auto isFull = [&](const std::string& id) {
    return call.world.related(id, "accepted").size() >= call.options.friendsPerUser;
  };
  if (isFull(call.userId)) throw Refusal(403, "the caller has too many friends", "too-many-friends");
  if (isFull(otherId)) throw Refusal(403, "this person has too many friends", "friend-has-too-many-friends");
}

void checkRequestLimits(const Call& call, const std::string& otherId) {
  checkFriendLimits(call, otherId);
  if (call.world.related(call.userId, "sent").size() >= call.options.pendingRequestsSent) {
    throw Refusal(403, "too many friend requests wait for an answer", "too-many-friend-requests-pending");
  }
  if (call.world.related(otherId, "pending").size() >= call.options.pendingRequestsReceived) {
    throw Refusal(403, "this person has too many friend requests to answer",
                  "friend-has-too-many-friend-requests-pending");
  }
}

EmulatorResponse sendFriendRequest(Call& call) {
  constexpr std::string_view sources[] = {"username", "contact", "profile", "comment", "friendsOfFriendsFeed"};
  const json body = call.body({"userId", "source"});
  const std::string id = textField(body, "userId");
  if (std::find(std::begin(sources), std::end(sources), textField(body, "source")) == std::end(sources)) {
    throw Refusal(400, "source is not known");
  }
  (void)call.self();
  if (id == call.userId) throw Refusal(400, "nobody befriends themselves");
  if (call.world.blocks.contains({call.userId, id})) throw Refusal(409, "the caller has blocked this person");
  (void)call.person(id);
  if (const Relationship* const known = call.world.relationship(call.userId, id)) {
    throw Refusal(409, "there is a relationship already: " + known->status);
  }
  checkRequestLimits(call, id);
  call.world.requestFriendship(call.userId, id, call.now);
  return jsonResponse(record(call, id), 201);
}

/// The sender cancels, the receiver accepts or rejects.
EmulatorResponse answerFriendRequest(Call& call) {
  const std::string& id = call.variables.at("id");
  const std::string status = textField(call.body({"status"}), "status");
  if (status != "canceled" && status != "accepted" && status != "rejected") throw Refusal(400, "status is not known");
  const Relationship* const known = call.world.relationship(call.userId, id);
  if (!known || known->status != (status == "canceled" ? "sent" : "pending")) {
    throw Refusal(404, "there is no such friend request");
  }
  if (status == "accepted") {
    checkFriendLimits(call, id);
    call.world.makeFriends(call.userId, id, call.now);
    return jsonResponse(record(call, id));
  }
  json ended = record(call, id);
  ended["status"] = status;
  ended["updatedAt"] = EmulatorText::dateText(call.now);
  call.world.endRelationship(call.userId, id);
  return jsonResponse(ended);
}

EmulatorResponse findContacts(Call& call) {
  json found = json::array();
  for (const std::string& number : textsField(call.body({"phoneNumbers"}), "phoneNumbers")) {
    if (number.empty()) throw Refusal(400, "a phone number is empty");
    for (const auto& [id, user] : call.world.users) {
      if (user.phoneNumber != number || id == call.userId || !call.world.person(id, call.userId)) continue;
      found.push_back(record(call, id));
      found.back()["hashedPhoneNumber"] = EmulatorText::sha256Hex(number);
    }
  }
  return jsonResponse(found);
}

}  // namespace

void addRelationshipsRoutes(Router& router) {
  router.add("GET", "/relationships/friends/", &listFriends);
  router.add("DELETE", "/relationships/friends/{id}", &removeFriend);
  router.add("GET", "/relationships/friends/common/{otherUserId}", &listCommonFriends);
  router.add("GET", "/relationships/suggestions/", &listSuggestions);
  router.add("DELETE", "/relationships/suggestions/{id}", &hideSuggestion);
  router.add("GET", "/relationships/friend-requests/sent", &listSent);
  router.add("GET", "/relationships/friend-requests/received", &listReceived);
  router.add("POST", "/relationships/friend-requests/", &sendFriendRequest);
  router.add("PATCH", "/relationships/friend-requests/{id}", &answerFriendRequest);
  router.add("POST", "/relationships/contacts", &findContacts);
}

}  // namespace ZAK
