#include "model/AnalyticsBody.hpp"
#include "model/RequestBodies.hpp"
#include "support/RecordChecks.hpp"
#include "support/Samples.hpp"

#include <zvapikit/model/AppSettingsDto.hpp>
#include <zvapikit/model/FofPostDto.hpp>
#include <zvapikit/model/LegacyPostDto.hpp>
#include <zvapikit/model/MemoriesRecapDto.hpp>
#include <zvapikit/model/MemoriesVideoDto.hpp>
#include <zvapikit/model/ProfileInformationDto.hpp>
#include <zvapikit/model/PushSettingsDto.hpp>

#include <gtest/gtest.h>

#include <limits>

namespace ZAK {
namespace {

using nlohmann::json;
using test::decodingError;
using test::sample;

template <class T>
std::string encoded(const T& value) {
  return JSONEncoder().encode(value);
}

TEST(Enumerations, TravelByRawValue) {
  test::checkRawValues<RelationshipsActionSourceDto>(
      {"username", "contact", "profile", "comment", "friendsOfFriendsFeed"});
  test::checkRawValues<ReportProfileReasonDto>({"repeated-friend-invites", "inappropriate-profile-photo",
                                                "inappropriate-username", "inappropriate-quiblet", "impersonation",
                                                "spam", "other"});
  test::checkRawValues<MemoriesVideoStatusDto>(
      {"done", "pending", "processing", "downloading", "nonexistent", "unavailable"});
  test::checkRawValues<RecapStatusDto>(
      {"pending", "processing", "done", "nonexistent", "unavailable", "toolate", "unknown"});
  test::checkRawValues<AppSettingsFeaturesFlagsMessagingDto::Scenario>({"no_limit", "no_limit_vanish"});
  test::checkRawValues<TermCodeDto>(
      {"memories", "gps", "terms", "privacy", "show-friends-to-friends", "camera", "contacts", "unknown"});
  test::checkRawValues<TermStatusDto>({"ACCEPTED", "DECLINED", "UNKNOWN"});
}

TEST(Enumerations, FallBackOnlyWhereTheyMay) {
  const auto term = [](const char* body) { return JSONDecoder().decode<TermDto>(body); };
  EXPECT_EQ(term(R"({"code":"show-friends-to-friends","status":"ACCEPTED"})").code, TermCodeDto::fofConnector);
  EXPECT_EQ(term(R"({"code":"fofConnector","status":"accepted"})").code, TermCodeDto::unknown);
  EXPECT_EQ(term(R"({"code":"gps","status":"accepted"})").status, TermStatusDto::unknown);

  json settings = sample("AppSettingsDto");
  settings["featureFlagsSettings"]["messaging"]["scenario"] = "noLimit";
  EXPECT_STREQ(decodingError<AppSettingsDto>(settings.dump()).what(),
               "featureFlagsSettings.messaging.scenario: Cannot initialize Scenario from invalid String value noLimit");
  EXPECT_EQ(decodingError<MemoriesVideoDto>(R"({"status":"unknown"})").kind(), DecodingError::Kind::dataCorrupted);
}

TEST(FofQuibletsRootDto, CallsItsOwnSelf) {
  json body = sample("FofQuibletsRootDto");
  EXPECT_EQ(JSONDecoder().decode<FofQuibletsRootDto>(body.dump()).mine->id, "mine");
  body["mine"] = body["self"];
  body.erase("self");
  EXPECT_EQ(JSONDecoder().decode<FofQuibletsRootDto>(body.dump()).mine, std::nullopt);
}

TEST(LegacyPostDto, TakesItsDatesAsObjectsOnly) {
  json body = sample("LegacyPostDto");
  const auto post = JSONDecoder().decode<LegacyPostDto>(body.dump());
  EXPECT_EQ(post.takenAt.date(), Date(std::chrono::milliseconds(1680714552345)));
  EXPECT_EQ(post.imageWidth, 1500.0);
  EXPECT_EQ(post.secondaryImageHeight, 1000.5);
  body["creationDate"] = "2023-04-05T17:09:12.345Z";
  EXPECT_STREQ(decodingError<std::vector<LegacyPostDto>>(json::array({body}).dump()).what(),
               "[0].creationDate: expected object, found string");
}

TEST(LegacyPostDto, CanBeMadeWithoutItsLastFields) {
  const LegacyPostDto post{"p1", {}, "n1", "eu", {}, {}, std::nullopt, 0,
                           {},   1,  2,    {},   3,  4,  std::nullopt, std::nullopt};
  EXPECT_EQ(post.secondaryImageWidth, 4);
  EXPECT_FALSE(post.caption || post.screenshots || post.screenshotsV2 || post.comment || post.quiblets ||
               post.visibility || post.retakeCounter);
}

TEST(LegacyPostDateDto, IsADate) {
  constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
  constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();
  const struct {
    LegacyPostDateDto record;
    Date date;
  } cases[] = {
      {{100, 500000000}, Date(std::chrono::milliseconds(100500))},
      {{1680714552, 123456789}, Date(std::chrono::microseconds(1680714552123457))},
      {{1680714552, -1000}, Date(std::chrono::microseconds(1680714551999999))},
      {{-2, 250000000}, Date(std::chrono::milliseconds(-1750))},
      {{0, 3000000000}, Date(std::chrono::seconds(3))},
      {{9'100'000'000'000, 0}, Date(std::chrono::seconds(9'100'000'000'000))},
      {{most, most}, Date::max()},
      {{least, least}, Date::min()},
  };
  for (const auto& [record, date] : cases) EXPECT_EQ(record.date(), date) << record._seconds;
}

TEST(ProfileInformationUsernameDto, ClearsTheNameWithNull) {
  EXPECT_EQ(encoded(ProfileInformationUsernameDto{std::optional<std::string>()}), R"({"username":null})");
  EXPECT_EQ(encoded(ProfileInformationUsernameDto{std::optional<std::string>("ada")}), R"({"username":"ada"})");
}

TEST(ProfileInformationDto, IsMadeInTheOrderOfItsFields) {
  const ProfileInformationDto infos("1", "2", "3", "4", Date(), "6", "7", "8", "9", "10", "11", "12");
  EXPECT_EQ(encoded(infos),
            R"({"username":"1","fullname":"2","biography":"3","location":"4","birthdate":"1970-01-01T00:00:00.000Z",)"
            R"("device":"6","deviceId":"7","platform":"8","timezone":"9","pushToken":"10","language":"11",)"
            R"("clientVersion":"12"})");
  const std::string created =
      R"({"username":"1","fullname":"2","birthdate":"1970-01-01T00:00:00.000Z","device":"6","deviceId":"7",)"
      R"("platform":"8","timezone":"9","pushToken":"10","language":"11","clientVersion":"12",)"
      R"("parentalConsentRequestId":"13"})";
  EXPECT_EQ(encoded(ProfileCreateInformationDto::of(infos, "13")), created);
  EXPECT_EQ(encoded(ProfileCreateInformationDto("1", "2", Date(), "6", "7", "8", "9", "10", "11", "12", "13")),
            created);
}

TEST(ProfileCreateInformationDto, NamesTheValueThatIsMissing) {
  for (const char* field : {"username", "fullname", "birthdate"}) {
    json body = sample("ProfileInformationDto");
    body.erase(field);
    const auto infos = JSONDecoder().decode<ProfileInformationDto>(body.dump());
    try {
      (void)ProfileCreateInformationDto::of(infos, std::nullopt);
      ADD_FAILURE() << field;
    } catch (const EncodingError& error) {
      EXPECT_EQ(error.codingPath(), std::vector<CodingKey>{field});
    }
  }
}

TEST(PushSettingsDto, KeepsItsFlagsApart) {
  const char* const keys[] = {"late", "comment", "mention", "friendRequest", "quiblet"};
  for (int i = 0; i < 5; ++i) {
    json expected;
    for (int k = 0; k < 5; ++k) expected[keys[k]] = i == k;
    EXPECT_EQ(json::parse(encoded(PushSettingsDto(i == 0, i == 1, i == 2, i == 3, i == 4))), expected);
  }
}

TEST(RequestBodies, HaveTheirShape) {
  EXPECT_EQ(encoded(FriendRequestBody{"u1", RelationshipsActionSourceDto::fof}),
            R"({"userId":"u1","source":"friendsOfFriendsFeed"})");
  EXPECT_EQ(encoded(FriendRequestStatusBody{RelationshipsStatusDto::canceled}), R"({"status":"canceled"})");
  EXPECT_EQ(encoded(ContactsBody{}), R"({"phoneNumbers":[]})");
  EXPECT_EQ(encoded(TermStatusBody{TermStatusDto::accepted}), R"({"status":"ACCEPTED"})");
  EXPECT_EQ(encoded(ReportProfileBody{"u1", ReportProfileReasonDto::spam, std::nullopt}),
            R"({"userId":"u1","reason":"spam"})");
  EXPECT_EQ(encoded(ReportPostBody{"p1", ReportPostReasonDto::hateSpeechOrSymbols, "ugh"}),
            R"({"postId":"p1","reason":"hate-speech-or-symbols","comment":"ugh"})");
  EXPECT_EQ(encoded(BlockUserBody{"u1"}), R"({"blockedUserId":"u1"})");
}

TEST(AnalyticsBody, HoldsTheEventsAsTheyStand) {
  EXPECT_EQ(analyticsBody({}), R"({"events":[]})");
  const json first = {{"name", "é/\"\n"}, {"at", 1.5}, {"n", 9223372036854775807}, {"null", nullptr}};
  const json second = {{"deep", {{"list", {1, true, json::object()}}}}};
  const std::string body = analyticsBody({AnalyticsEventDto(first), AnalyticsEventDto(), AnalyticsEventDto(second)});
  EXPECT_EQ(json::parse(body), json({{"events", {first, json::object(), second}}}));
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
                        {{"a", {0, std::numeric_limits<double>::infinity()}}},
                        {{"a", std::numeric_limits<double>::quiet_NaN()}},
                        {{"a", json::binary({1, 2})}},
                        {{"a", "\xFF"}},
                        {{"\xC3", 1}},
                        nested(511)};
  for (const json& event : cases) {
    try {
      (void)analyticsBody({AnalyticsEventDto(json::object()), AnalyticsEventDto(event)});
      ADD_FAILURE() << event.type_name();
    } catch (const EncodingError& error) {
      EXPECT_TRUE(std::string(error.what()).starts_with("events[1]")) << error.what();
    }
  }
  EXPECT_NO_THROW((void)analyticsBody({AnalyticsEventDto(nested(510))}));
  try {
    (void)analyticsBody({AnalyticsEventDto(cases[2])});
  } catch (const EncodingError& error) {
    EXPECT_TRUE(std::string(error.what()).starts_with("events[0].a[1]: ")) << error.what();
  }
}

}  // namespace
}  // namespace ZAK
