#include "Call.hpp"
#include "Regions.hpp"

namespace ZAK {

using nlohmann::json;

namespace {

EmulatorResponse listRegions(Call& call) {
  call.checkQuery({"language"});
  const bool isFrench = call.language() == "fr";
  json list = json::array();
  for (const Region& region : regions()) {
    list.push_back({{"code", region.code}, {"name", isFrench ? region.french : region.name}});
  }
  return jsonResponse(list);
}

EmulatorResponse readSettings(Call& call) {
  call.checkQuery({});
  const json messaging{{"token", "messaging-" + call.userId}, {"scenario", "no_limit"}};
  return jsonResponse(
      {{"mandatoryVersions", {{"ios", "1.0.0"}}},
       {"recommendedVersions", {{"ios", "1.2.0"}}},
       {"polling", {{"feedsFriends", 30}, {"moment", 60}}},
       {"analytics",
        {{"batch", {{"maxLength", 50}, {"flushAfterMs", 10000}}}, {"metrics", {{"postSustainLookTimeInMs", 1500}}}}},
       {"featureFlags", {{"friendsOfFriendsFeed", true}, {"messaging", true}, {"analytics", true}}},
       {"featureFlagsSettings", {{"messaging", messaging}}}});
}

EmulatorResponse readPushSettings(Call& call) {
  call.checkQuery({});
  return jsonResponse(call.world.preferences[call.userId].push);
}

EmulatorResponse changePushSettings(Call& call) {
  call.checkQuery({});
  const json body = call.body({"late", "comment", "mention", "friendRequest", "quiblet"});
  auto push = call.world.preferences[call.userId].push;
  for (auto& [name, isWanted] : push) isWanted = flagField(body, name.c_str());
  call.world.preferences[call.userId].push = push;
  return jsonResponse(push);
}

json term(const std::string& code, const std::string& status) { return {{"code", code}, {"status", status}}; }

EmulatorResponse listTerms(Call& call) {
  call.checkQuery({});
  json list = json::array();
  for (const auto& [code, status] : call.world.preferences[call.userId].terms) list.push_back(term(code, status));
  return jsonResponse({{"data", std::move(list)}});
}

EmulatorResponse changeTerm(Call& call) {
  call.checkQuery({});
  const std::string status = textField(call.body({"status"}), "status");
  if (status != "ACCEPTED" && status != "DECLINED" && status != "UNKNOWN")
    throw Refusal(400, "status must be ACCEPTED, DECLINED or UNKNOWN");
  auto& terms = call.world.preferences[call.userId].terms;
  const auto found = terms.find(call.variables.at("code"));
  if (found == terms.end()) throw Refusal(404, "there is no such term");
  found->second = status;
  return jsonResponse(term(found->first, status));
}

}  // namespace

void addSettingsRoutes(Router& router) {
  router.add("GET", "/zolvi/regions", &listRegions);
  router.add("GET", "/settings", &readSettings);
  router.add("GET", "/settings/notification-push", &readPushSettings);
  router.add("PUT", "/settings/notification-push", &changePushSettings);
  router.add("GET", "/terms", &listTerms);
  router.add("PUT", "/terms/{code}", &changeTerm);
}

}  // namespace ZAK
