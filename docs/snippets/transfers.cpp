#include "Snippets.hpp"

#include <zvapikit/domains/MemoriesDomain.hpp>
#include <zvapikit/domains/ProfileDomain.hpp>
#include <zvapikit/domains/UploadDomain.hpp>
#include <zvapikit/http/HTTPClient.hpp>

#include <filesystem>
#include <fstream>
#include <iostream>

namespace {

boost::asio::awaitable<ZAK::MediaBucketDto> uploadSelfie(ZAK::UploadDomain uploads, std::filesystem::path file) {
  const ZAK::UploadUrlDto target = co_await uploads.askInstantQuibletUploadUrl();
  const auto sent = [](std::uint64_t done, std::optional<std::uint64_t> total) {
    std::clog << done << " of " << total.value_or(0) << " bytes\r";
  };
  co_await uploads.uploadFile(file, target, sent);
  co_return target.media(1500, 2000);  // pixels
}

boost::asio::awaitable<std::filesystem::path> watchRecap(ZAK::MemoriesDomain memories, ZAK::URL url) {
  const bool force = false;  // what is on the device already is good enough
  const ZAK::MemoriesVideoLocation location = co_await memories.getVideo(url, force, "2022");
  co_return location.path(memories.directories().documents);
}

boost::asio::awaitable<ZAK::HTTPResponse> fetchLargeFile(std::shared_ptr<ZAK::MobileApiClient> client, ZAK::URL url,
                                                         std::filesystem::path destination) {
  ZAK::HTTPRequest request(ZAK::HTTPMethod::get, url);
  request.destination = destination;
  request.timeout = std::chrono::seconds(20);  // without a byte
  request.maxRetries = 2;
  co_return co_await client->download(std::move(request));  // failures are in its `error`
}

boost::asio::awaitable<void> transfer(std::shared_ptr<ZAK::MobileApiClient> client, std::filesystem::path directory) {
  const std::filesystem::path picture = directory / "selfie.jpg";
  std::ofstream(picture) << std::string(100'000, 'p');
  const ZAK::MediaBucketDto selfie = co_await uploadSelfie(ZAK::UploadDomain(client), picture);
  require(!selfie.path.empty(), "the selfie is nowhere");

  const ZAK::URL url = ZAK::URL::parse("https://storage.zolvi.example/" + selfie.bucket + "/" + selfie.path).value();
  const std::filesystem::path kept = co_await watchRecap(ZAK::MemoriesDomain(client), url);
  require(std::filesystem::file_size(kept) == 100'000, "the video is not what was uploaded");

  const ZAK::HTTPResponse response = co_await fetchLargeFile(client, url, directory / "copy.jpg");
  require(!response.error && response.file == directory / "copy.jpg", "the file is not there");
}

}  // namespace

void transfers() {
  ZAK::EmulatorThread backend;
  boost::asio::io_context io;
  const auto alice = std::make_shared<Alice>();
  const auto directory = std::filesystem::temp_directory_path() / ("snippets-" + std::to_string(backend->port()));
  ZAK::Directories::createPrivate(directory);
  ZAK::Context context = contextFor(backend, io, alice);
  context.directories = {.documents = directory / "documents", .temporary = directory / "temporary"};
  const auto client = ZAK::MobileApiClient::create(std::move(context));
  run(io, transfer(client, directory));
  std::filesystem::remove_all(directory);
}
