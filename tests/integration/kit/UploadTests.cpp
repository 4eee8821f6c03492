#include "Kit.hpp"

#include <zvapikit/core/ZAKError.hpp>
#include <zvapikit/domains/ProfileDomain.hpp>
#include <zvapikit/domains/UploadDomain.hpp>
#include <zvapikit/domains/VonageDomain.hpp>
#include <zvapikit/json/JSONErrors.hpp>

#include <gmock/gmock.h>

#include <map>

namespace ZAK::Tests {
namespace {

namespace fs = std::filesystem;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using testing::UnorderedElementsAreArray;

const std::string picture = std::string("\xFF\xD8\0\r\n--", 7) + std::string(300'000, 'p');

UploadUrlDto uploadUrl(Kit& kit) {
  UploadUrlDto url = kit.runner.run(UploadDomain(kit.client).askInstantQuibletUploadUrl());
  kit.requests();
  kit.logger->take();
  return url;
}

TEST(KitUpload, CarriesWhatWasSignedAloneAndGoesByTheStatus) {
  const std::string refused = "ZAKError: Upload with signed url failed";
  const std::string answer = "message: [UploadDomain] Google Bucket answer : ";
  const std::string error = "error: [UploadDomain] Google Bucket error : ";
  using Headers = std::map<std::string, std::string>;
  const struct {
    std::string outcome, line;
    std::optional<Headers> headers{};
    std::optional<EmulatorResponse> answer{};
    std::chrono::hours later{0};
  } cases[] = {
      {"ok", answer},
      {refused, error + "<?xml", Headers{}},
      {refused, "content-length-range is not", Headers{{"content-type", "image/jpeg"}, {"X-Empty", ""}}},
      {refused, "signature expired at: ", {}, {}, std::chrono::hours(1)},
      {"ok", error + "no Error", {}, EmulatorResponse{201, "no Error"}},
      {refused, answer + "an error", {}, EmulatorResponse{503, "an error"}},
      {refused, answer, {}, EmulatorResponse{307, "", {{"Location", "https://storage.zolvi.example/x"}}}},
  };
  Kit kit({.emulator = {.tokenLifetime = std::chrono::hours(24)}});
  const fs::path file = kit.files.write("picture", picture);
  for (const auto& given : cases) {
    SCOPED_TRACE(given.line);
    std::vector<UploadUrlDto> urls{uploadUrl(kit), uploadUrl(kit)};
    if (given.answer) kit.emulator->inject({.times = 2, .answer = given.answer});
    kit.clock->advance(given.later);
    std::pair<std::uint64_t, std::optional<std::uint64_t>> sent[2];
    for (const bool fromFile : {false, true}) {
      UploadUrlDto& url = urls[fromFile];
      if (given.headers) url.headers = *given.headers;
      const auto listener = [&told = sent[fromFile]](auto done, auto total) { told = {done, total}; };
      UploadDomain uploads(kit.client);
      kit.start(fromFile ? uploads.uploadFile(file, url, listener) : uploads.upload(picture, url, listener));
    }
    kit.finish();
    EXPECT_EQ(std::exchange(*kit.outcomes, {}), Texts(2, given.outcome));
    EXPECT_THAT(sent, Each(std::pair(picture.size(), std::optional(picture.size()))));
    EXPECT_THAT(kit.logger->take(), ElementsAre(HasSubstr(given.line), HasSubstr(given.line)));

    EmulatorHeaders expected(urls[0].headers.begin(), urls[0].headers.end());
    expected.emplace_back("Host", "storage.zolvi.example");
    expected.emplace_back("Content-Length", std::to_string(picture.size()));
    if (urls[0].headers.empty()) expected.emplace_back("Content-Type", "image/jpeg");
    Texts targets;
    for (const EmulatorRequest& request : kit.requests()) {
      targets.push_back("https://" + request.host + request.target);
      EXPECT_EQ(request.method, "PUT");
      EXPECT_THAT(request.headers, UnorderedElementsAreArray(expected));
      EXPECT_TRUE(request.body == picture);
    }
    EXPECT_THAT(targets, UnorderedElementsAre(urls[0].url.string(), urls[1].url.string())) << "each once";
  }
}

TEST(KitUpload, TriesABrokenConnectionFourTimesUnlessCancelled) {
  Kit kit;
  UploadUrlDto url = uploadUrl(kit);
  for (const int failures : {3, 4}) {
    const auto transport = std::make_shared<ScriptedTransport>();
    const HTTPError lost(HTTPError::Kind::connectionLost, HTTPStatusCode(), "connection lost");
    for (int i = 0; i < failures; ++i) transport->add(ScriptedAnswer(lost));
    if (failures == 3) transport->add(ScriptedAnswer(200));
    Context context = kit.context();
    context.testTransport = transport;
    const auto client = MobileApiClient::create(std::move(context));
    EXPECT_EQ(kit.outcomeOf(UploadDomain(client).upload(picture, url)), failures == 3 ? "ok" : "connection lost");
    ASSERT_EQ(transport->requests().size(), 4u);
    EXPECT_EQ(transport->requests()[0].timeout, std::chrono::seconds(60));
  }
  UploadDomain uploads(kit.client);
  const std::size_t unanswered = kit.emulator->inject({.cutAfter = 0});
  Running<void> call(kit.runner.context(), uploads.upload(picture, url));
  ASSERT_TRUE(kit.runner.runUntil([&] { return kit.emulator->timesMet(unanswered) == 1; }));
  call.cancel.emit(boost::asio::cancellation_type::total);
  kit.finish();
  EXPECT_TRUE(call.wasCancelled());
  EXPECT_EQ(kit.requests().size(), 1u);

  EXPECT_EQ(kit.outcomeOf(uploads.uploadFile("none", url)), "a file failed: No such file or directory");
  url.url = URL::parse("http://storage.zolvi.example/x").value();
  EXPECT_EQ(kit.outcomeOf(uploads.upload(picture, url)), "the URL is not https");
  kit.client.reset();
  EXPECT_EQ(kit.outcomeOf(uploads.upload(picture, url)), "ZAKError: No client available");
  EXPECT_THAT(kit.traffic(), IsEmpty());
}

awaitable<void> update(ProfileDomain profile, std::string data, std::string name) {
  const ProfileDto updated = co_await profile.updateProfilePicture(std::move(data), std::move(name));
  EXPECT_EQ(updated.id, "alice");
  EXPECT_TRUE(updated.profilePicture);
}

TEST(KitPicture, ArrivesAsAFormAndStaysInTheTemporaryDirectory) {
  Kit kit;
  kit.signIn();
  const ProfileDomain profile(kit.client);
  const fs::path victim = kit.files.write("victim", "untouched");
  const fs::path kept = kit.files.path() / "temporary" / "me \"1\".jpg";
  fs::create_directory(kept.parent_path());
  fs::create_symlink(victim, kept);
  for (const std::string& data : {picture, std::string("second")}) {
    kit.emulator->inject({.server = EmulatorServer::mobile, .token = EmulatorFault::Token::expire});
    EXPECT_EQ(kit.outcomeOf(update(profile, data, "me \"1\".jpg")), "ok");
    const std::vector<EmulatorRequest> requests = kit.requests();
    ASSERT_EQ(requests.size(), 3u) << "refused, refresh, accepted";
    for (const auto& request : {requests[0], requests[2]}) {
      const std::string type = *request.header("Content-Type");
      ASSERT_TRUE(type.starts_with("multipart/form-data; boundary=")) << type;
      const std::string delimiter = "--" + type.substr(type.find('=') + 1);
      EXPECT_TRUE(request.body == delimiter +
                                      "\r\nContent-Disposition: form-data; name=\"file\"; "
                                      "filename=\"me %221%22.jpg\"\r\nContent-Type: image/jpeg\r\n\r\n" +
                                      data + "\r\n" + delimiter + "--\r\n")
          << request.body.substr(0, 300);
    }
    EXPECT_TRUE(contentOf(kept) == data);
    EXPECT_EQ(fs::symlink_status(kept).type(), fs::file_type::regular);
    EXPECT_EQ(contentOf(victim), "untouched");
  }
  EXPECT_EQ(std::distance(fs::directory_iterator(kept.parent_path()), {}), 1);
}

TEST(KitPicture, IsNotSentUnderANameOrFromAPlaceThatWillNotDo) {
  Kit kit;
  kit.signIn();
  const ProfileDomain profile(kit.client);
  const fs::path temporary = kit.files.path() / "temporary";
  const std::string names[] = {"", ".", "..", "a/b", "/x", "../x", "x..y", ":", "http:", std::string("a\0b", 3)};
  for (const std::string& name : names) {
    EXPECT_EQ(kit.outcomeOf(update(profile, picture, name)), "ZAKError: Upload file name not valid") << name;
  }
  EXPECT_FALSE(fs::exists(temporary));
  fs::create_directories(temporary / "directory");
  EXPECT_THAT(kit.outcomeOf(update(profile, picture, "directory")), HasSubstr("Is a directory"));
  fs::remove_all(temporary);
  kit.files.write("temporary", "");
  EXPECT_THAT(kit.outcomeOf(update(profile, picture, "x")), HasSubstr("Not a directory"));
  EXPECT_THAT(kit.traffic(), IsEmpty());
}

TEST(KitPhone, NamesTheDeviceIfThereIsOneAndTakesKnownStatusesAlone) {
  Kit kit;
  Context context = kit.context();
  context.deviceInfo = DeviceInfo("Linux", "12.4", "");
  kit.client = MobileApiClient::create(std::move(context));
  kit.perform("vonage.requestCode", R"({"for":"+33639980104"})", R"({"status":"0"})");
  EXPECT_EQ(kit.requests().at(0).body, R"({"phoneNumber":"+33639980104"})");
  kit.emulator->inject({.answer = EmulatorResponse{200, R"({"vonageRequestId":"v","status":"1"})"}});
  EXPECT_THROW(kit.runner.run(VonageDomain(kit.client).requestCode("+33639980103")), DecodingError);
}

}  // namespace
}  // namespace ZAK::Tests
