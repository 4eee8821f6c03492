#include "model/AnalyticsBody.hpp"
#include "support/DecodingFailure.hpp"
#include "support/Samples.hpp"

#include <zvapikit/auth/TokenRequestDto.hpp>
#include <zvapikit/auth/VonageDto.hpp>
#include <zvapikit/core/CollectionDto.hpp>
#include <zvapikit/core/ErrorDto.hpp>
#include <zvapikit/json/JSONEncoder.hpp>
#include <zvapikit/model/AppSettingsDto.hpp>
#include <zvapikit/model/BlockedUserDto.hpp>
#include <zvapikit/model/CreatePostDto.hpp>
#include <zvapikit/model/DiscoveryDto.hpp>
#include <zvapikit/model/FofPostDto.hpp>
#include <zvapikit/model/LegacyPostDto.hpp>
#include <zvapikit/model/MemoriesDto.hpp>
#include <zvapikit/model/MemoriesRecapDto.hpp>
#include <zvapikit/model/MemoriesVideoDto.hpp>
#include <zvapikit/model/MomentDto.hpp>
#include <zvapikit/model/PersonDto.hpp>
#include <zvapikit/model/PostActionDto.hpp>
#include <zvapikit/model/PostDto.hpp>
#include <zvapikit/model/ProfileDto.hpp>
#include <zvapikit/model/ProfileInformationDto.hpp>
#include <zvapikit/model/ProfileQuibletUploadDto.hpp>
#include <zvapikit/model/PushSettingsDto.hpp>
#include <zvapikit/model/RegionDto.hpp>
#include <zvapikit/model/RelationshipsActionSourceDto.hpp>
#include <zvapikit/model/RelationshipsPersonDto.hpp>
#include <zvapikit/model/ReportPostReasonDto.hpp>
#include <zvapikit/model/ReportProfileReasonDto.hpp>
#include <zvapikit/model/SearchPersonDto.hpp>
#include <zvapikit/model/StatsRecapDto.hpp>
#include <zvapikit/model/TermDto.hpp>
#include <zvapikit/model/UniqueDto.hpp>
#include <zvapikit/model/UploadUrlDto.hpp>

#include <gtest/gtest.h>

#include <limits>
#include <sstream>
#include <string>
#include <vector>

namespace ZAK {
namespace {

using nlohmann::json;
using Tests::decodingError;
using Tests::sample;

/// Sends a record's sample through decoder and encoder, whole and with each field missing, misspelt, null or of another
/// type.
template <class T>
void checkRecord(const std::string& name) {
  SCOPED_TRACE(name);
  const auto again = [](const json& body) {
    return json::parse(JSONEncoder().encode(JSONDecoder().decode<T>(body.dump())));
  };
  const json whole = sample(name);
  EXPECT_EQ(again(whole), whole);
  const auto optional = Tests::optionalKeys(name);
  for (const auto& [key, content] : whole.items()) {
    const auto expectFault = [&, &field = key](const json& value, DecodingError::Kind kind) {
      json body = whole;
      body[field] = value;
      const DecodingError error = decodingError<T>(body.dump());
      EXPECT_EQ(error.kind(), kind) << body;
      EXPECT_EQ(error.codingPath(), std::vector<CodingKey>{field}) << body;
    };
    for (const json& wrong : {json(5), json(true), json("5"), json::array({5}), json{{"a", 5}}}) {
      const bool fits = content.is_number() ? wrong.is_number() : content.type() == wrong.type();
      if (!fits) expectFault(wrong, DecodingError::Kind::typeMismatch);
    }
    json body = whole;
    body.erase(key);
    if (optional.contains(key)) {
      EXPECT_EQ(again(body), body) << key;
      json cleared = whole;
      cleared[key] = nullptr;
      EXPECT_EQ(again(cleared), body) << key;
      continue;
    }
    expectFault(nullptr, DecodingError::Kind::valueNotFound);
    EXPECT_EQ(decodingError<T>(body.dump()).key(), key);
    for (std::size_t i = 0; i < key.size(); ++i) {
      json misspelt = body;
      misspelt[std::string(key).replace(i, 1, "#")] = content;
      EXPECT_EQ(decodingError<T>(misspelt.dump()).key(), key) << i;
    }
  }
}

template <class... T>
void checkRecords(std::istringstream names) {
  std::string name;
  (checkRecord<T>((names >> std::ws, std::getline(names, name, ','), name)), ...);
}

TEST(Records, TravelWholeAndRequireWhatTheyMust) {
#define CHECK_RECORDS(...) checkRecords<__VA_ARGS__>(std::istringstream(#__VA_ARGS__))
  CHECK_RECORDS(MediaDto, MediaBucketDto, UploadUrlDto, CreatePostPictureDto, CreatePostLocationDto, CreatePostDto,
                NewPostDto, PostPerson, PostMomentDto, PostLocationDto, PostQuibletDto, PostCommentDto,
                PostScreenshotDto, SampleCollectionDto<PostQuibletDto>, PostDto, CaptionDto, VisibilityDto,
                AddCommentDto, DeleteCommentsDto, AddQuibletDto, AddInstantQuibletDto, DeleteQuibletsDto);
  CHECK_RECORDS(FofCommonFriendDto, FofUserDto, FofRelationshipDto, FofMomentDto, FofLocationDto, FofQuibletUserDto,
                FofQuibletDto, FofQuibletsRootDto, FofPostDto, LegacyPostUserDto, LegacyPostDateDto, LegacyPostLocation,
                LegacyPostQuibletDto, LegacyPostCommentDto, LegacyPostScreenshotDto, LegacyPostDto, DiscoveryDto);
  CHECK_RECORDS(ProfileDeviceDto, ProfileQuibletDto, ProfileDto, ProfileCreateInformationDto, ProfileInformationDto,
                ProfileQuibletUploadDto, ProfileQuibletDeleteDto, PersonCommonFriendsSampleDto, PersonCommonFriendsDto,
                PersonRelationshipsDto, PersonDto, SearchPersonDto, RelationshipsPersonDto, BlockedUserDetailsDto,
                BlockedUserDto, UniqueDto<MediaDto>);
  CHECK_RECORDS(RegionDto, RegionUpdateDto, MomentDto, MemoryDto, MemoriesDto, MemoriesVideoDto, MemoriesRecapDto,
                MemoriesRecapsDto, StatsRecapCardDto, StatsRecapDto, AppSettingsDto, AppSettingsVersionDto,
                AppSettingsPollingDto, AppSettingsAnalyticsDto, AppSettingsAnalyticsBatchDto,
                AppSettingsAnalyticsMetricsDto, AppSettingsFeatureFlagsDto, AppSettingsFeatureFlagsSettingsDto,
                AppSettingsFeaturesFlagsMessagingDto, PushSettingsDto, TermDto, ErrorDto, CollectionDto<std::string>,
                TokenRequestDto);
#undef CHECK_RECORDS
}

/// Compares the texts of an enumeration, in the order of its cases. One that has a case for it takes any other text.
template <class E>
void checkRawValues(const std::vector<std::string>& texts) {
  for (std::size_t i = 0; i < texts.size(); ++i) {
    EXPECT_EQ(fromRawValue<E>(texts[i]), static_cast<E>(i)) << texts[i];
    EXPECT_EQ(rawValue(static_cast<E>(i)), texts[i]);
  }
  EXPECT_EQ(RawValues<E>::cases.size(), texts.size());
  EXPECT_EQ(CodableLastByDefault<E>, texts.back() == "unknown" || texts.back() == "UNKNOWN") << texts.back();
}

TEST(Enumerations, TravelByRawValue) {
  checkRawValues<PostVisibilityDto>({"friends", "friends-of-friends", "public", "unknown"});
  checkRawValues<RelationshipsStatusDto>({"pending", "accepted", "rejected", "canceled", "sent"});
  checkRawValues<RelationshipsActionSourceDto>({"username", "contact", "profile", "comment", "friendsOfFriendsFeed"});
  checkRawValues<ReportPostReasonDto>({"spam", "scam-or-untrue", "inappropriate-caption", "just-not-for-me",
                                       "nudity-or-sexual", "violent-or-dangerous", "hate-speech-or-symbols",
                                       "suicide-or-self-harm", "other"});
  checkRawValues<ReportProfileReasonDto>({"repeated-friend-invites", "inappropriate-profile-photo",
                                          "inappropriate-username", "inappropriate-quiblet", "impersonation", "spam",
                                          "other"});
  checkRawValues<MemoriesVideoStatusDto>(
      {"done", "pending", "processing", "downloading", "nonexistent", "unavailable"});
  checkRawValues<RecapStatusDto>({"pending", "processing", "done", "nonexistent", "unavailable", "toolate", "unknown"});
  checkRawValues<AppSettingsFeaturesFlagsMessagingDto::Scenario>({"no_limit", "no_limit_vanish"});
  checkRawValues<TermCodeDto>(
      {"memories", "gps", "terms", "privacy", "show-friends-to-friends", "camera", "contacts", "unknown"});
  checkRawValues<VonageStatusDto>({"0", "3", "6", "10", "16", "17"});
  checkRawValues<TermStatusDto>({"ACCEPTED", "DECLINED", "UNKNOWN"});
}

TEST(PostDto, TakesUnknownVisibilitiesButNoNullAndNoEmptyAddress) {
  json body = sample("PostDto");
  body["visibility"] = {"friends", "Public", "public", ""};
  using enum PostVisibilityDto;
  const auto post = JSONDecoder().decode<PostDto>(body.dump());
  EXPECT_EQ(post.visibility, (std::vector{friends, unknown, public_, unknown}));
  body["visibility"][1] = nullptr;
  EXPECT_STREQ(decodingError<PostDto>(body.dump()).what(), "visibility[1]: expected string, found null");
  body = sample("PostDto");
  body["primary"]["url"] = "";
  EXPECT_STREQ(decodingError<PostDto>(body.dump()).what(), "primary.url: Invalid URL string.");
}

TEST(FofQuibletsRootDto, CallsItsOwnSelf) {
  json body = sample("FofQuibletsRootDto");
  body["self"]["id"] = "mine";
  EXPECT_EQ(JSONDecoder().decode<FofQuibletsRootDto>(body.dump()).mine->id, "mine");
}

TEST(LegacyPostDateDto, IsADate) {
  constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
  constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();
  const struct {
    LegacyPostDateDto record;
    Date date;
  } cases[] = {
      {{100, 500000000}, Date(std::chrono::milliseconds(100500))},
      {{1680714552, -1000}, Date(std::chrono::microseconds(1680714551999999))},
      {{-2, 250000000}, Date(std::chrono::milliseconds(-1750))},
      {{most, most}, Date::max()},
      {{least, least}, Date::min()},
  };
  for (const auto& [record, date] : cases) EXPECT_EQ(record.date(), date) << record._seconds;
}

TEST(ProfileInformationDto, IsMadeInTheOrderOfItsFields) {
  ProfileInformationDto infos("1", "2", "3", "4", Date(), "6", "7", "8", "9", "10", "11", "12");
  EXPECT_EQ(JSONEncoder().encode(infos),
            R"({"username":"1","fullname":"2","biography":"3","location":"4","birthdate":"1970-01-01T00:00:00.000Z",)"
            R"("device":"6","deviceId":"7","platform":"8","timezone":"9","pushToken":"10","language":"11",)"
            R"("clientVersion":"12"})");
  EXPECT_EQ(JSONEncoder().encode(ProfileCreateInformationDto::of(infos, "13")),
            R"({"username":"1","fullname":"2","birthdate":"1970-01-01T00:00:00.000Z","device":"6","deviceId":"7",)"
            R"("platform":"8","timezone":"9","pushToken":"10","language":"11","clientVersion":"12",)"
            R"("parentalConsentRequestId":"13"})");

  void (*const resets[])(ProfileInformationDto&) = {[](auto& given) { given.username.reset(); },
                                                    [](auto& given) { given.fullname.reset(); },
                                                    [](auto& given) { given.birthdate.reset(); }};
  for (const auto reset : resets) {
    ProfileInformationDto incomplete = infos;
    reset(incomplete);
    EXPECT_THROW((void)ProfileCreateInformationDto::of(incomplete, std::nullopt), EncodingError);
  }
}

/// An object with `levels` of nesting, itself included.
json nested(int levels) {
  json value = json::object();
  for (int i = 1; i < levels; ++i) value = json{{"a", std::move(value)}};
  return value;
}

TEST(AnalyticsBody, RefusesWhatJSONCannotHold) {
  const json cases[] = {json::array(),
                        nullptr,
                        {{"a", std::numeric_limits<double>::quiet_NaN()}},
                        {{"a", json::binary({1, 2})}},
                        {{"a", "\xFF"}},
                        {{"\xC3", 1}},
                        nested(511),
                        {{"a", {0, std::numeric_limits<double>::infinity()}}}};
  std::string failure;
  for (const json& event : cases) {
    try {
      failure = analyticsBody({AnalyticsEventDto(json::object()), AnalyticsEventDto(event)});
    } catch (const EncodingError& error) {
      failure = error.what();
    }
    EXPECT_TRUE(failure.starts_with("events[1]")) << failure;
  }
  EXPECT_TRUE(failure.starts_with("events[1].a[1]: ")) << failure;
  EXPECT_NO_THROW((void)analyticsBody({AnalyticsEventDto(nested(510))}));
}

}  // namespace
}  // namespace ZAK
