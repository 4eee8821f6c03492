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

}  // namespace

json sample(std::string_view record) {
  static const std::map<std::string_view, std::function<json()>> samples = {
      {"CreatePostDto", createPost},
      {"CreatePostPictureDto", bucketFile},
      {"ErrorDto", error},
      {"MediaBucketDto", bucketFile},
      {"MediaDto", [] { return media("one"); }},
      {"PostCommentDto", comment},
      {"PostDto", post},
      {"PostLocationDto", location},
      {"PostPerson", person},
      {"PostQuibletDto", quiblet},
      {"PostScreenshotDto", screenshot},
      {"TokenDto", token},
      {"TokenRequestDto", tokenRequest},
      {"UploadUrlDto", uploadUrl},
  };
  const auto found = samples.find(record);
  if (found == samples.end()) throw std::invalid_argument("no sample of " + std::string(record));
  return found->second();
}

}  // namespace ZAK::test
