#include "Call.hpp"
#include "Records.hpp"
#include "SampleMedia.hpp"

#include <chrono>

namespace ZAK {

using nlohmann::json;

namespace {

constexpr auto grantLifetime = std::chrono::minutes(15);
constexpr const char* pictureType = "image/jpeg";

/// Allows one upload and tells how.
json uploadUrl(Call& call, const std::string& kind) {
  const std::string bucket = bucketName(call.world.environment);
  const std::string path = "Photos/" + call.userId + "/" + kind + "/" + EmulatorText::randomHex() + ".jpg";
  const std::string lifetime = std::to_string(std::chrono::seconds(grantLifetime).count());
  const std::string query =
      "?X-Goog-Algorithm=GOOG4-RSA-SHA256&X-Goog-Expires=" + lifetime +
      "&X-Goog-SignedHeaders=content-type%3Bhost%3Bx-goog-content-length-range&X-Goog-Signature=" +
      EmulatorText::randomHex();
  const std::string url = EmulatorRecords::mediaUrl(bucket, path) + query;
  const Bucket::Grant grant{
      {{"Content-Type", pictureType}, {"x-goog-content-length-range", "1," + std::to_string(call.options.uploadLimit)}},
      call.now + grantLifetime};
  call.world.bucket.grants[EmulatorText::targetOf(url)] = grant;
  return {{"url", url},
          {"expireAt", EmulatorText::dateText(grant.expiresAt)},
          {"bucket", bucket},
          {"path", path},
          {"headers", grant.headers}};
}

void checkPictureQuery(const Call& call) {
  call.checkQuery({"mimeType"});
  if (call.queryValue("mimeType") != pictureType) throw Refusal(400, "pictures must be image/jpeg");
}

/// A URL for each of the two cameras.
EmulatorResponse postUploadUrls(Call& call) {
  checkPictureQuery(call);
  return jsonResponse({{"data", {uploadUrl(call, "post"), uploadUrl(call, "post")}}});
}

EmulatorResponse instantUploadUrl(Call& call) {
  checkPictureQuery(call);
  return jsonResponse(uploadUrl(call, "instant"));
}

EmulatorResponse quibletUploadUrl(Call& call) {
  checkPictureQuery(call);
  return jsonResponse(uploadUrl(call, "quiblet"));
}

/// The storage explains itself in XML.
EmulatorResponse storageRefusal(int status, const std::string& code, const std::string& message) {
  return {status,
          "<?xml version='1.0' encoding='UTF-8'?><Error><Code>" + code + "</Code><Message>" + message +
              "</Message></Error>",
          {{"Content-Type", "application/xml; charset=UTF-8"}}};
}

EmulatorResponse putFile(Call& call) {
  const auto found = call.world.bucket.grants.find(call.request.target);
  if (found == call.world.bucket.grants.end()) {
    return storageRefusal(403, "SignatureDoesNotMatch", "The request signature does not match the signed URL.");
  }
  const Bucket::Grant& grant = found->second;
  if (grant.expiresAt <= call.now) {
    return storageRefusal(400, "ExpiredToken",
                          "Request signature expired at: " + EmulatorText::dateText(grant.expiresAt));
  }
  for (const auto& [name, value] : grant.headers) {
    const std::string* const sent = call.request.header(name);
    if (!sent || *sent != value) {
      return storageRefusal(403, "SignatureDoesNotMatch", "The header " + name + " is not the signed one.");
    }
  }
  if (call.request.body.empty() || call.request.body.size() > call.options.uploadLimit) {
    return storageRefusal(400, "EntityTooLarge", "The upload is not within x-goog-content-length-range.");
  }
  call.world.bucket.files[call.variables.at("path")] = call.request.body;
  return {200, "", {{"Content-Type", "text/html; charset=UTF-8"}}};
}

/// Whether somebody's recap has its video there.
bool isFinishedVideo(const Call& call, std::string_view path) {
  for (const auto& [userId, archive] : call.world.archives) {
    for (const auto& [year, recap] : archive.recaps) {
      if (recap.step == Recap::Step::done && path == EmulatorRecords::videoPath(userId, year)) return true;
    }
  }
  return false;
}

EmulatorResponse getFile(Call& call) {
  const std::string& path = call.variables.at("path");
  const auto found = call.world.bucket.files.find(path);
  if (found != call.world.bucket.files.end()) return {200, found->second, {{"Content-Type", pictureType}}};
  if (isFinishedVideo(call, path)) {
    return {200, SampleMedia::video(call.options.videoSize), {{"Content-Type", "video/mp4"}}};
  }
  // The pictures of those who were there from the start.
  if (path.starts_with("Photos/") && path.ends_with(".jpg")) {
    return {200, SampleMedia::picture(1500, 2000), {{"Content-Type", pictureType}}};
  }
  return storageRefusal(404, "NoSuchKey", "The specified key does not exist.");
}

}  // namespace

void addUploadRoutes(Router& router) {
  router.add("GET", "/content/posts/upload-url", &postUploadUrls);
  router.add("GET", "/content/quiblets/upload-url", &instantUploadUrl);
  router.add("GET", "/person/quiblets/upload-url", &quibletUploadUrl);
}

void addStorageRoutes(Router& router) {
  router.add("PUT", "/{path...}", &putFile);
  router.add("GET", "/{path...}", &getFile);
}

}  // namespace ZAK
