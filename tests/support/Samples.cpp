#include "support/Samples.hpp"

#include <functional>
#include <map>
#include <stdexcept>

namespace ZAK::test {
namespace {

using nlohmann::json;

json media(const char* name) {
  return {{"url", std::string("https://cdn.zolvi.example/photos/") + name + ".webp?v=1"},
          {"width", 1500.0},
          {"height", 2000.5}};
}

json person() {
  return {{"id", "u1"},
          {"username", "ada"},
          {"fullname", "Ada L."},
          {"profilePicture", media("ada")},
          {"status", "accepted"}};
}

json bucketFile() { return {{"bucket", "storage"}, {"path", "photos/a.jpg"}, {"width", 1500}, {"height", 2000}}; }

json location() { return {{"latitude", 48.85}, {"longitude", -2.35}}; }

json quiblet() {
  return {{"id", "q1"},        {"user", person()},          {"emoji", "😍"},
          {"isInstant", true}, {"media", media("quiblet")}, {"postedAt", "2023-04-05T17:10:00.000Z"}};
}

json comment() {
  return {{"id", "c1"}, {"user", person()}, {"postedAt", "2023-04-05T17:11:00.000Z"}, {"content", "so nice"}};
}

json screenshot() { return {{"id", "s1"}, {"user", person()}}; }

json sampleOf(const json& element) { return {{"sample", json::array({element})}, {"total", 7}}; }

json post() {
  return {{"id", "p1"},
          {"user", person()},
          {"moment", {{"id", "m1"}, {"region", "europe-west"}}},
          {"visibility", {"friends", "friends-of-friends"}},
          {"location", location()},
          {"caption", "a day / a night"},
          {"retakeCounter", 2},
          {"isLate", true},
          {"lateInSeconds", 90},
          {"primary", media("primary")},
          {"secondary", media("secondary")},
          {"quiblets", sampleOf(quiblet())},
          {"comments", sampleOf(comment())},
          {"screenshots", sampleOf(screenshot())},
          {"takenAt", "2023-04-05T17:09:12.345Z"},
          {"createdAt", "2023-04-05T17:09:13.000Z"}};
}

json createPost() {
  return {{"takenAt", "2023-04-05T17:09:12.345Z"},
          {"backCamera", bucketFile()},
          {"frontCamera", bucketFile()},
          {"isLate", false},
          {"visibility", {"friends"}},
          {"retakeCounter", 1},
          {"location", location()}};
}

json uploadUrl() {
  return {{"url", "https://storage.example/b/o?signature=a%2Bb"},
          {"expireAt", "2023-04-05T18:00:00.000Z"},
          {"bucket", "storage"},
          {"path", "photos/a.jpg"},
          {"headers", {{"Cache-Control", "private"}, {"x-goog-meta", ""}}}};
}

json error() {
  return {{"error", "Conflict"},      {"statusCode", 409}, {"message", "taken"}, {"errorKey", "username-not-available"},
          {"requestId", "request-1"}, {"timestamp", "now"}};
}

json tokenRequest() {
  return {{"grant_type", "firebase"},
          {"client_id", "app"},
          {"client_secret", "secret"},
          {"refresh_token", "refresh-1"},
          {"token", "firebase-1"}};
}

json token() {
  return {{"token_type", "Bearer"}, {"access_token", "access-1"},     {"refresh_token", "refresh-1"},
          {"scope", "all"},         {"firebase_token", "firebase-1"}, {"expires_date", "2023-04-05T18:00:00.000Z"}};
}

json with(json record, const json& more) {
  record.update(more);
  return record;
}

json profileLine() {
  return {{"id", "u1"}, {"username", "ada"}, {"fullname", "Ada L."}, {"profilePicture", media("ada")}};
}

json legacyUser() { return {{"id", "u1"}, {"username", "ada"}, {"profilePicture", media("ada")}}; }

json legacyDate(int seconds) { return {{"_seconds", seconds}, {"_nanoseconds", 345000000}}; }

json legacyQuiblet() {
  return {{"id", "q1"},           {"uid", "u1"},
          {"user", legacyUser()}, {"emoji", "😍"},
          {"type", "instant"},    {"uri", "https://cdn.zolvi.example/q.webp"},
          {"userName", "ada"},    {"date", legacyDate(1680714600)}};
}

json legacyComment() {
  return {{"id", "c1"},        {"uid", "u1"},       {"user", legacyUser()},
          {"text", "so nice"}, {"userName", "ada"}, {"creationDate", legacyDate(1680714660)}};
}

json legacyScreenshot() { return {{"id", "s1"}, {"user", legacyUser()}}; }

json legacyPost() {
  return {{"id", "p1"},
          {"user", legacyUser()},
          {"notificationID", "n1"},
          {"region", "europe-west"},
          {"creationDate", legacyDate(1680714553)},
          {"takenAt", legacyDate(1680714552)},
          {"updatedAt", 1680714700123},
          {"lateInSeconds", 90},
          {"photoURL", "https://cdn.zolvi.example/primary.webp"},
          {"imageHeight", 2000.5},
          {"imageWidth", 1500.0},
          {"secondaryPhotoURL", "https://cdn.zolvi.example/secondary.webp"},
          {"secondaryImageHeight", 1000.5},
          {"secondaryImageWidth", 750.0},
          {"geoHash", "u09"},
          {"location", {{"_latitude", 48.85}, {"_longitude", -2.35}}},
          {"caption", "a day"},
          {"screenshots", {"u2"}},
          {"screenshotsV2", {legacyScreenshot()}},
          {"comment", {legacyComment()}},
          {"quiblets", {legacyQuiblet()}},
          {"visibility", {"friends", "nobody"}},
          {"retakeCounter", 2}};
}

json fofQuiblet(const char* id) {
  return {
      {"id", id},          {"user", {{"id", "u2"}, {"username", "bob"}}}, {"media", media("quiblet")}, {"emoji", "😍"},
      {"isInstant", true}, {"postedAt", "2023-04-05T17:10:00.000Z"}};
}

json fofQuiblets() {
  return {{"total", 3}, {"self", fofQuiblet("mine")}, {"sample", json::array({fofQuiblet("other")})}};
}

json fofUser() { return with(profileLine(), {{"relationship", {{"commonFriends", json::array({profileLine()})}}}}); }

json fofPost() {
  return {{"id", "p1"},
          {"user", fofUser()},
          {"moment", {{"id", "m1"}, {"region", "europe-west"}}},
          {"primary", media("primary")},
          {"secondary", media("secondary")},
          {"location", location()},
          {"caption", "a day"},
          {"takenAt", "2023-04-05T17:09:12.345Z"},
          {"postedAt", "2023-04-05T17:09:13.000Z"},
          {"lateInSeconds", 90},
          {"quiblets", fofQuiblets()}};
}

json device() {
  return {{"device", "Pixel"},     {"deviceId", "d1"}, {"platform", "linux"},     {"timezone", "Europe/Paris"},
          {"pushToken", "push-1"}, {"language", "fr"}, {"clientVersion", "1.2.3"}};
}

json profile() {
  return {{"id", "u1"},
          {"username", "ada"},
          {"devices", {device()}},
          {"quiblets", {{{"emoji", "😍"}, {"media", media("quiblet")}}}},
          {"fullname", "Ada L."},
          {"phoneNumber", "+33123456789"},
          {"profilePicture", media("ada")},
          {"biography", "mathematics"},
          {"location", "London"},
          {"countryCode", "GB"},
          {"region", "europe-west"},
          {"canPost", true},
          {"canUpdateRegion", false},
          {"newUsername", "ada2"},
          {"accountDeleteScheduledAt", "2023-05-05T00:00:00.000Z"},
          {"createdAt", "2022-01-01T00:00:00.000Z"}};
}

json information() {
  return with(device(), {{"username", "ada"},
                         {"fullname", "Ada L."},
                         {"biography", "mathematics"},
                         {"location", "London"},
                         {"birthdate", "1990-12-10T00:00:00.000Z"}});
}

json createInformation() {
  return with(device(), {{"username", "ada"},
                         {"fullname", "Ada L."},
                         {"birthdate", "1990-12-10T00:00:00.000Z"},
                         {"parentalConsentRequestId", "consent-1"}});
}

json commonFriends() { return {{"sample", json::array({person()})}, {"total", 7}}; }

json relationship() {
  return {{"status", "sent"}, {"commonFriends", commonFriends()}, {"friendedAt", "2023-01-01T00:00:00.000Z"}};
}

json publicProfile() {
  return with(profileLine(), {{"createdAt", "2022-01-01T00:00:00.000Z"},
                              {"biography", "mathematics"},
                              {"location", "London"},
                              {"relationship", relationship()}});
}

json searchedPerson() { return with(person(), {{"mutualFriends", 3}}); }

json listedPerson() {
  return with(searchedPerson(), {{"hashedPhoneNumber", "abc"},
                                 {"createdAt", "2022-01-01T00:00:00.000Z"},
                                 {"updatedAt", "2022-01-02T00:00:00.000Z"}});
}

json moment() {
  return {{"id", "m1"},
          {"region", "europe-west"},
          {"startDate", "2023-04-05T17:07:00.000Z"},
          {"endDate", "2023-04-05T17:09:00.000Z"},
          {"timezone", "Europe/Paris"}};
}

json memory() {
  return {{"id", "p1"},
          {"isLate", true},
          {"memoryDay", "2023-07-14"},
          {"primary", media("primary")},
          {"secondary", media("secondary")},
          {"thumbnail", media("thumbnail")}};
}

json memories() {
  return {{"data", {memory()}}, {"next", "after"}, {"prev", "before"}, {"memoriesSynchronized", true}};
}

json memoriesVideo() {
  return {{"status", "done"},
          {"url", "https://cdn.zolvi.example/v.mp4"},
          {"primary", media("primary")},
          {"secondary", media("secondary")}};
}

json recap() {
  return {{"id", "r1"},
          {"videoStatus", "done"},
          {"year", 2023},
          {"countdownEnd", "2023-12-31T23:00:00.000Z"},
          {"generationWindowEnd", "2024-01-31T23:00:00.000Z"},
          {"queuePosition", 12},
          {"videoUrl", "https://cdn.zolvi.example/r.mp4"},
          {"clientFallback", true}};
}

json appSettings() {
  return {{"mandatoryVersions", {{"ios", "1.0.0"}}},
          {"recommendedVersions", {{"ios", "1.2.0"}}},
          {"polling", {{"feedsFriends", 30}, {"moment", 60}}},
          {"analytics",
           {{"batch", {{"maxLength", 20}, {"flushAfterMs", 5000}}}, {"metrics", {{"postSustainLookTimeInMs", 700}}}}},
          {"featureFlags", {{"friendsOfFriendsFeed", true}, {"messaging", false}, {"analytics", true}}},
          {"featureFlagsSettings", {{"messaging", {{"token", "m1"}, {"scenario", "no_limit_vanish"}}}}}};
}

}  // namespace

json sample(std::string_view record) {
  static const std::map<std::string_view, std::function<json()>> samples = {
      {"AppSettingsDto", appSettings},
      {"BlockedUserDetailsDto", profileLine},
      {"CreatePostDto", createPost},
      {"CreatePostPictureDto", bucketFile},
      {"ErrorDto", error},
      {"FofPostDto", fofPost},
      {"FofQuibletDto", [] { return fofQuiblet("q1"); }},
      {"FofQuibletsRootDto", fofQuiblets},
      {"FofUserDto", fofUser},
      {"LegacyPostCommentDto", legacyComment},
      {"LegacyPostDto", legacyPost},
      {"LegacyPostQuibletDto", legacyQuiblet},
      {"LegacyPostScreenshotDto", legacyScreenshot},
      {"LegacyPostUserDto", legacyUser},
      {"MediaBucketDto", bucketFile},
      {"MediaDto", [] { return media("one"); }},
      {"MemoriesDto", memories},
      {"MemoriesRecapDto", recap},
      {"MemoriesVideoDto", memoriesVideo},
      {"MemoryDto", memory},
      {"MomentDto", moment},
      {"PersonCommonFriendsDto", commonFriends},
      {"PersonDto", publicProfile},
      {"PersonRelationshipsDto", relationship},
      {"PostCommentDto", comment},
      {"PostDto", post},
      {"PostLocationDto", location},
      {"PostPerson", person},
      {"PostQuibletDto", quiblet},
      {"PostScreenshotDto", screenshot},
      {"ProfileCreateInformationDto", createInformation},
      {"ProfileDeviceDto", device},
      {"ProfileDto", profile},
      {"ProfileInformationDto", information},
      {"RelationshipsPersonDto", listedPerson},
      {"SearchPersonDto", searchedPerson},
      {"TokenDto", token},
      {"TokenRequestDto", tokenRequest},
      {"UploadUrlDto", uploadUrl},
  };
  const auto found = samples.find(record);
  if (found == samples.end()) throw std::invalid_argument("no sample of " + std::string(record));
  return found->second();
}

}  // namespace ZAK::test
