#include "core/Endpoint.hpp"
#include "core/Log.hpp"

#include <zvapikit/domains/MemoriesDomain.hpp>

namespace ZAK {

using boost::asio::awaitable;

namespace {

namespace fs = std::filesystem;

/// A video of so many bytes or fewer is a broken download.
constexpr std::uintmax_t brokenVideoSize = 20480;

bool isPresent(const fs::path& video) {
  std::error_code unreadable;
  const std::uintmax_t size = fs::file_size(video, unreadable);
  return !unreadable && size > brokenVideoSize;
}

/// Where the file of a location below the documents directory is.
fs::path fileOf(const MemoriesVideoLocation& location, const fs::path& documents) {
  return documents / *location.documentsPath();
}

/// Lets the file system's errors through as they are.
[[noreturn]] void failDownload(const std::shared_ptr<LoggerDelegate>& logger, const HTTPResponse& response) {
  // Without an error the answer was one that has no content.
  const HTTPError reason = response.error ? *response.error : HTTPError::unsuccessful(response.statusCode);
  const auto* const file = dynamic_cast<const fs::filesystem_error*>(reason.underlyingError().get());
  if (file) throw fs::filesystem_error(*file);
  Log::error(logger, "[MemoriesDomain] download failed : " + reason.description(), &reason);
  throw ZAKError(ZAKError::failedToDownloadData);
}

awaitable<void> download(std::weak_ptr<MobileApiClient> weakClient, HTTPRequest request) {
  const auto client = locked(weakClient);
  const HTTPResponse response = co_await client->download(std::move(request));
  if (!response.file) failDownload(client->logger(), response);
}

HTTPRequest downloadRequest(const URL& url, fs::path destination, HTTPProgress::Function received) {
  HTTPRequest request(HTTPMethod::get, url);
  request.destination = std::move(destination);
  request.progress.received = std::move(received);
  return request;
}

awaitable<MemoriesVideoLocation> obtainVideo(std::weak_ptr<MobileApiClient> client, fs::path documents,
                                             std::optional<URL> url, bool force, std::string recapName,
                                             HTTPProgress::Function received) {
  if (!url) throw ZAKError(ZAKError::urlNotValid);
  const auto location = MemoriesVideoLocation::serverGenerated(*url, recapName, documents);
  const fs::path file = fileOf(location, documents);
  if (force || !isPresent(file)) {
    HTTPRequest request = downloadRequest(*url, file, std::move(received));
    co_await download(std::move(client), std::move(request));
  }
  co_return location;
}

}  // namespace

awaitable<MemoriesDto> MemoriesDomain::fetchAll() {
  return fire<MemoriesDto>(weakClient(), Endpoint::get("/feeds/memories"));
}

awaitable<MemoriesDto> MemoriesDomain::fetchFirst(std::int64_t limit) {
  return fire<MemoriesDto>(weakClient(), Endpoint::get("/feeds/memories").query("limit", std::to_string(limit)));
}

awaitable<void> MemoriesDomain::deleteMemory(std::string memoryId) {
  return fire<void>(weakClient(), Endpoint::delete_("/feeds/memories/{id}", {{"id", std::move(memoryId)}}));
}

awaitable<MemoriesRecapsDto> MemoriesDomain::fetchRecaps() {
  return fire<MemoriesRecapsDto>(weakClient(), Endpoint::get("/feeds/memories/videos"));
}

awaitable<MemoriesRecapDto> MemoriesDomain::generateVideo(std::string recapId) {
  return fire<MemoriesRecapDto>(weakClient(),
                                Endpoint::post("/feeds/memories/videos/{id}", {{"id", std::move(recapId)}}));
}

awaitable<void> MemoriesDomain::deleteVideos(std::string recapId) {
  return fire<void>(weakClient(), Endpoint::delete_("/feeds/memories/videos/{id}", {{"id", std::move(recapId)}}));
}

awaitable<MemoriesVideoLocation> MemoriesDomain::getVideo(std::optional<URL> url, bool force, std::string recapName,
                                                          HTTPProgress::Function received) {
  return obtainVideo(weakClient(), directories().documents, std::move(url), force, std::move(recapName),
                     std::move(received));
}

std::optional<MemoriesVideoLocation> MemoriesDomain::getLocalVideoLocation(const std::optional<URL>& remoteUrl,
                                                                           const std::string& recapName) const {
  if (!remoteUrl) return std::nullopt;
  auto location = MemoriesVideoLocation::serverGenerated(*remoteUrl, recapName, directories().documents);
  if (!isPresent(fileOf(location, directories().documents))) return std::nullopt;
  return location;
}

void MemoriesDomain::deleteLocalVideo(const std::optional<URL>& remoteUrl, const std::string& recapName) const {
  if (!remoteUrl) return;
  const auto location = MemoriesVideoLocation::serverGenerated(*remoteUrl, recapName, directories().documents);
  const fs::path file = fileOf(location, directories().documents);
  if (!fs::remove(file)) {
    throw fs::filesystem_error("there is no such video", file,
                               std::make_error_code(std::errc::no_such_file_or_directory));
  }
}

awaitable<void> MemoriesDomain::downloadPhoto(URL url, fs::path destination, HTTPProgress::Function received) {
  HTTPRequest request = downloadRequest(url, std::move(destination), std::move(received));
  request.maxRetries = 1;
  return download(weakClient(), std::move(request));
}

}  // namespace ZAK
