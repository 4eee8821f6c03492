#include "Call.hpp"
#include "Paging.hpp"
#include "Records.hpp"

#include <algorithm>
#include <charconv>

namespace ZAK {

using nlohmann::json;

namespace {

json relationshipRecord(const Call& call, const std::string& userId) {
  constexpr std::size_t sampleSize = 3;
  json record = json::object();
  if (userId == call.userId) return record;
  if (const Relationship* const relationship = call.world.relationship(call.userId, userId)) {
    record["status"] = relationship->status;
    if (relationship->status == "accepted") record["friendedAt"] = EmulatorText::dateText(relationship->updatedAt);
  }
  const auto common = call.world.commonFriends(call.userId, userId);
  json sample = json::array();
  for (std::size_t i = 0; i < std::min(common.size(), sampleSize); ++i) {
    sample.push_back(EmulatorRecords::person(call.world, common[i], call.userId));
  }
  record["commonFriends"] = {{"sample", std::move(sample)}, {"total", common.size()}};
  return record;
}

EmulatorResponse personResponse(const Call& call, const User& user) {
  json record = EmulatorRecords::person(call.world, user.id, call.userId);
  record.erase("status");
  record["createdAt"] = EmulatorText::dateText(*user.createdAt);
  if (!user.biography.empty()) record["biography"] = user.biography;
  if (!user.location.empty()) record["location"] = user.location;
  record["relationship"] = relationshipRecord(call, user.id);
  return jsonResponse(record);
}

EmulatorResponse readPerson(Call& call) { return personResponse(call, call.person(call.variables.at("userId"))); }

EmulatorResponse readPersonByUsername(Call& call) {
  const std::string& username = call.variables.at("username");
  for (const auto& [id, user] : call.world.users) {
    if (!EmulatorText::equalIgnoringCase(user.username, username)) continue;
    if (call.world.person(id, call.userId)) return personResponse(call, user);
  }
  throw Refusal(404, "there is no such person");
}

/// The query item `limit`, 1 to 100.
std::size_t limitOf(const Call& call) {
  const std::string text = call.queryValue("limit");
  std::size_t limit = 0;
  const char* const end = text.data() + text.size();
  if (std::from_chars(text.data(), end, limit).ptr != end || limit < 1 || limit > 100) {
    throw Refusal(400, "limit must be an integer from 1 to 100");
  }
  return limit;
}

EmulatorResponse searchPersons(Call& call) {
  call.checkQuery({"query", "limit"});
  const std::string wanted = call.queryValue("query");
  const std::size_t limit = limitOf(call);
  const auto holdsWanted = [&](const std::string& text) {
    for (std::size_t i = 0; i + wanted.size() <= text.size(); ++i) {
      if (EmulatorText::equalIgnoringCase(std::string_view(text).substr(i, wanted.size()), wanted)) return true;
    }
    return false;
  };
  json found = json::array();
  for (const auto& [id, user] : call.world.users) {
    if (found.size() == limit) break;
    if (id == call.userId || !call.world.person(id, call.userId)) continue;
    if (!holdsWanted(user.username) && !holdsWanted(user.fullname)) continue;
    found.push_back(EmulatorRecords::person(call.world, id, call.userId));
    found.back()["mutualFriends"] = call.world.commonFriends(call.userId, id).size();
  }
  return jsonResponse({{"data", std::move(found)}});
}

}  // namespace

void addPeopleRoutes(Router& router) {
  router.add("GET", "/person/profiles/{userId}", &readPerson);
  router.add("GET", "/person/profiles/username/{username}", &readPersonByUsername);
  router.add("GET", "/search/profile", &searchPersons);
}

}  // namespace ZAK
