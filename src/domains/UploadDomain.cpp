#include "core/Endpoint.hpp"
#include "core/Log.hpp"

#include <zvapikit/domains/UploadDomain.hpp>
#include <zvapikit/http/HTTPClient.hpp>

#include <chrono>

namespace ZAK {

using boost::asio::awaitable;

namespace {

Endpoint uploadUrl(const char* path) {
  return Endpoint::get(path).query("mimeType", std::string(MIMEType::uploadImage));
}

/// The upload itself. What was signed is sent as it is, and nothing is followed to where it was not signed for.
HTTPRequest signedRequest(const UploadUrlDto& target, HTTPBody body, HTTPProgress::Function sent) {
  HTTPRequest request(HTTPMethod::put, target.url);
  for (const auto& [name, value] : target.headers) request.headers.set({name, value});
  request.body = std::move(body);
  request.timeout = std::chrono::seconds(60);
  request.maxRetries = 3;
  request.maxRedirects = 0;
  request.progress.sent = std::move(sent);
  return request;
}

void logAnswer(const DelegateReference<LoggerDelegate>& logger, const std::string& text) {
  if (text.find("Error") != std::string::npos) {
    Log::error(logger, "[UploadDomain] Google Bucket error : " + text, nullptr);
  } else {
    Log::message(logger, "[UploadDomain] Google Bucket answer : " + text);
  }
}

awaitable<void> send(std::weak_ptr<MobileApiClient> weakClient, HTTPRequest request) {
  const auto client = locked(weakClient);
  const HTTPResponse response = co_await client->buildRaw()->fetch(std::move(request));
  if (response.error && response.error->kind() != HTTPError::Kind::status) throw HTTPError(*response.error);
  const auto logger = client->logger();
  logAnswer(logger, response.body);
  if (!response.statusCode.isSuccess()) throw ZAKError(ZAKError::failedToUploadWithSignedUrl);
}

}  // namespace

awaitable<CollectionDto<UploadUrlDto>> UploadDomain::askPostUploadUrls() {
  return fire<CollectionDto<UploadUrlDto>>(weakClient(), uploadUrl("/content/posts/upload-url"));
}

awaitable<UploadUrlDto> UploadDomain::askProfileQuibletUploadUrl() {
  return fire<UploadUrlDto>(weakClient(), uploadUrl("/person/quiblets/upload-url"));
}

awaitable<UploadUrlDto> UploadDomain::askInstantQuibletUploadUrl() {
  return fire<UploadUrlDto>(weakClient(), uploadUrl("/content/quiblets/upload-url"));
}

awaitable<void> UploadDomain::upload(std::string data, UploadUrlDto with, HTTPProgress::Function sent) {
  return send(weakClient(),
              signedRequest(with, HTTPBody::data(std::move(data), MIMEType::uploadImage), std::move(sent)));
}

awaitable<void> UploadDomain::uploadFile(std::filesystem::path file, UploadUrlDto with, HTTPProgress::Function sent) {
  return send(weakClient(),
              signedRequest(with, HTTPBody::file(std::move(file), MIMEType::uploadImage), std::move(sent)));
}

}  // namespace ZAK
