#include "Call.hpp"
#include "Form.hpp"
#include "Records.hpp"
#include "Regions.hpp"

#include <algorithm>
#include <array>

namespace ZAK {

using nlohmann::json;

namespace {

constexpr std::array deviceKeys{"clientVersion", "device", "pushToken", "language", "platform", "timezone"};
constexpr std::chrono::years longestLife{130};
constexpr std::chrono::years ageOfConsent{16};
constexpr std::chrono::days deletionDelay{15};

bool mayChangeRegion(const Call& call) { return call.usage().regionChanges < call.options.regionChangesPerMoment; }

EmulatorResponse profileResponse(Call& call, const User& user, int status = 200) {
  json record{{"id", user.id},
              {"username", user.username},
              {"devices", json::array()},
              {"quiblets", json::array()},
              {"region", user.region},
              {"canPost", call.world.postOf(user.id, World::moment(call.now).id) == nullptr},
              {"canUpdateRegion", mayChangeRegion(call)},
              {"createdAt", EmulatorText::dateText(*user.createdAt)}};
  for (const auto& [id, values] : user.devices) {
    json device = values;
    device["deviceId"] = id;
    record["devices"].push_back(std::move(device));
  }
  for (const auto& [emoji, media] : user.quiblets) {
    record["quiblets"].push_back({{"emoji", emoji}, {"media", EmulatorRecords::media(media)}});
  }
  const auto addText = [&](const char* key, const std::string& text) {
    if (!text.empty()) record[key] = text;
  };
  addText("fullname", user.fullname);
  addText("phoneNumber", user.phoneNumber);
  addText("biography", user.biography);
  addText("location", user.location);
  if (user.profilePicture) record["profilePicture"] = EmulatorRecords::media(*user.profilePicture);
  if (user.deletionAt) record["accountDeleteScheduledAt"] = EmulatorText::dateText(*user.deletionAt);
  return jsonResponse(record, status);
}

/// Gives the user a name that nobody else bears, be it as a user name or as the id that stands in for one.
void rename(const Call& call, User& user, std::string username) {
  for (const auto& [id, other] : call.world.users) {
    if (id == user.id) continue;
    if (EmulatorText::equalIgnoringCase(other.username, username) || EmulatorText::equalIgnoringCase(id, username)) {
      throw Refusal(409, "the user name is taken", "username-not-available");
    }
  }
  user.username = std::move(username);
}

Date birthdateField(const Call& call, const json& body) {
  const Date birthdate = dateField(body, "birthdate");
  if (birthdate > call.now || birthdate < call.now - longestLife) {
    throw Refusal(400, "nobody alive was born then", "error-birthdate");
  }
  return birthdate;
}

/// The device that a body tells about: the one it names, else the one that sends it.
void takeDevice(const Call& call, const json& body, User& user) {
  std::map<std::string, std::string> values;
  for (const char* key : deviceKeys) {
    if (body.contains(key)) values[key] = textField(body, key);
  }
  const std::string* const header = call.request.header("zolvi-device-id");
  std::string deviceId = header ? *header : std::string();
  if (body.contains("deviceId")) {
    deviceId = textField(body, "deviceId");
  } else if (values.empty()) {
    return;
  }
  if (deviceId.empty()) throw Refusal(400, "deviceId is missing");
  auto& device = user.devices[deviceId];
  for (auto& [key, value] : values) device[key] = std::move(value);
}

/// A text that may be emptied.
void takeText(const json& body, const char* key, std::string& place) {
  if (!body.contains(key)) return;
  if (!body.at(key).is_string()) throw Refusal(400, std::string(key) + " must be a text");
  place = body.at(key).get<std::string>();
}

EmulatorResponse createProfile(Call& call) {
  const json body =
      call.body({"username", "fullname", "birthdate"}, {"device", "deviceId", "platform", "timezone", "pushToken",
                                                        "language", "clientVersion", "parentalConsentRequestId"});
  User user = call.world.users.at(call.userId);
  if (user.createdAt) throw Refusal(409, "the user has a profile already");
  if (birthdateField(call, body) > call.now - ageOfConsent && !body.contains("parentalConsentRequestId")) {
    throw Refusal(403, "a parent must consent", "missing-parental-consent");
  }
  if (body.contains("parentalConsentRequestId")) (void)textField(body, "parentalConsentRequestId");
  user.fullname = textField(body, "fullname");
  takeDevice(call, body, user);
  rename(call, user, textField(body, "username"));
  user.createdAt = call.now;
  return profileResponse(call, call.world.users[call.userId] = std::move(user), 201);
}

/// Changes what the body holds, all of it or, when one value is refused, nothing.
EmulatorResponse updateProfile(Call& call) {
  const json body = call.body({}, {"username", "fullname", "biography", "location", "birthdate", "device", "deviceId",
                                   "platform", "timezone", "pushToken", "language", "clientVersion"});
  User user = call.self();
  if (body.contains("birthdate")) (void)birthdateField(call, body);
  if (body.contains("fullname")) user.fullname = textField(body, "fullname");
  takeText(body, "biography", user.biography);
  takeText(body, "location", user.location);
  takeDevice(call, body, user);
  if (body.contains("username")) rename(call, user, textField(body, "username"));
  return profileResponse(call, call.world.users[call.userId] = std::move(user));
}

/// Without a user name, the id stands in for it.
EmulatorResponse updateUsername(Call& call) {
  const json body = call.body({"username"});
  User& user = call.self();
  rename(call, user, body.at("username").is_null() ? user.id : textField(body, "username"));
  return profileResponse(call, user);
}

EmulatorResponse updateRegion(Call& call) {
  const std::string code = textField(call.body({"region"}), "region");
  User& user = call.self();
  const auto& all = regions();
  if (std::none_of(all.begin(), all.end(), [&](const Region& region) { return region.code == code; })) {
    throw Refusal(400, "region is not known");
  }
  if (code != user.region) {
    if (!mayChangeRegion(call)) throw Refusal(409, "the region was changed too often");
    ++call.usage().regionChanges;
    user.region = code;
  }
  return profileResponse(call, user);
}

EmulatorResponse readProfile(Call& call) { return profileResponse(call, call.self()); }

EmulatorResponse deleteAccount(Call& call) {
  User& user = call.self();
  if (!user.deletionAt) user.deletionAt = call.now + deletionDelay;
  return profileResponse(call, user);
}

EmulatorResponse cancelAccountDeletion(Call& call) {
  User& user = call.self();
  if (!user.deletionAt) throw Refusal(409, "no deletion is pending");
  user.deletionAt.reset();
  return profileResponse(call, user);
}

EmulatorResponse putProfilePicture(Call& call) {
  User& user = call.self();
  const std::vector<FormPart> form = parseForm(call.request);
  if (form.size() != 1 || form[0].name != "file" || form[0].fileName.empty() || form[0].contentType != "image/jpeg" ||
      form[0].content.empty()) {
    throw Refusal(400, "the form must be one picture under the name file");
  }
  const std::string path = "Photos/" + user.id + "/profile/" + EmulatorText::randomHex() + ".jpg";
  call.world.bucket.files[path] = form[0].content;
  user.profilePicture = Picture{bucketName(call.world.environment), path, 1000, 1000};
  return profileResponse(call, user);
}

EmulatorResponse deleteProfilePicture(Call& call) {
  User& user = call.self();
  user.profilePicture.reset();
  return profileResponse(call, user);
}

EmulatorResponse putQuiblet(Call& call) {
  const json body = call.body({"emoji", "media"});
  User& user = call.self();
  user.quiblets.insert_or_assign(textField(body, "emoji"), pictureField(body, "media"));
  return profileResponse(call, user);
}

EmulatorResponse deleteQuiblet(Call& call) {
  const std::string emoji = textField(call.body({"emoji"}), "emoji");
  User& user = call.self();
  if (user.quiblets.erase(emoji) == 0) throw Refusal(404, "there is no selfie for this emoji");
  return profileResponse(call, user);
}

}  // namespace

void addProfileRoutes(Router& router) {
  router.add("POST", "/person/me", &createProfile);
  router.add("GET", "/person/me", &readProfile);
  router.add("PATCH", "/person/me", &updateProfile);
  router.add("DELETE", "/person/me", &deleteAccount);
  router.add("PATCH", "/person/me/cancel-delete", &cancelAccountDeletion);
  router.add("PATCH", "/person/me/username", &updateUsername);
  router.add("PATCH", "/person/me/region", &updateRegion);
  router.add("PUT", "/person/me/profile-picture", &putProfilePicture);
  router.add("DELETE", "/person/me/profile-picture", &deleteProfilePicture);
  router.add("PUT", "/person/me/quiblets", &putQuiblet);
  router.add("DELETE", "/person/me/quiblets", &deleteQuiblet);
}

}  // namespace ZAK
