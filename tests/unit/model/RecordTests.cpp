#include "support/RecordChecks.hpp"
#include "support/Samples.hpp"

#include <zvapikit/model/AppSettingsDto.hpp>
#include <zvapikit/model/BlockedUserDto.hpp>
#include <zvapikit/model/DiscoveryDto.hpp>
#include <zvapikit/model/FofPostDto.hpp>
#include <zvapikit/model/LegacyPostDto.hpp>
#include <zvapikit/model/MemoriesDto.hpp>
#include <zvapikit/model/MemoriesRecapDto.hpp>
#include <zvapikit/model/MemoriesVideoDto.hpp>
#include <zvapikit/model/MomentDto.hpp>
#include <zvapikit/model/PersonDto.hpp>
#include <zvapikit/model/ProfileDto.hpp>
#include <zvapikit/model/ProfileInformationDto.hpp>
#include <zvapikit/model/ProfileQuibletUploadDto.hpp>
#include <zvapikit/model/PushSettingsDto.hpp>
#include <zvapikit/model/RegionDto.hpp>
#include <zvapikit/model/RelationshipsPersonDto.hpp>
#include <zvapikit/model/SearchPersonDto.hpp>
#include <zvapikit/model/StatsRecapDto.hpp>
#include <zvapikit/model/TermDto.hpp>
#include <zvapikit/model/UniqueDto.hpp>

#include <gtest/gtest.h>

namespace ZAK {
namespace {

using test::checkRecord;
using test::sample;

TEST(FeedRecords, RequireWhatTheyMust) {
  checkRecord<FofCommonFriendDto>(sample("BlockedUserDetailsDto"), {"id", "username"});
  checkRecord<FofUserDto>(sample("FofUserDto"), {"id", "username"});
  checkRecord<FofRelationshipDto>(sample("FofUserDto")["relationship"], {});
  checkRecord<FofMomentDto>({{"id", "m1"}, {"region", "europe-west"}}, {"id", "region"});
  checkRecord<FofLocationDto>(sample("PostLocationDto"), {"latitude", "longitude"});
  checkRecord<FofQuibletUserDto>({{"id", "u1"}, {"username", "ada"}}, {"id", "username"});
  checkRecord<FofQuibletDto>(sample("FofQuibletDto"), {"id", "user", "media", "emoji", "isInstant", "postedAt"});
  checkRecord<FofQuibletsRootDto>(sample("FofQuibletsRootDto"), {"total", "sample"});
  checkRecord<FofPostDto>(sample("FofPostDto"),
                          {"id", "user", "moment", "primary", "secondary", "takenAt", "postedAt", "lateInSeconds"});
  checkRecord<LegacyPostUserDto>(sample("LegacyPostUserDto"), {"id", "username"});
  checkRecord<LegacyPostDateDto>({{"_seconds", 1}, {"_nanoseconds", 2}}, {"_seconds", "_nanoseconds"});
  checkRecord<LegacyPostLocation>({{"_latitude", 1.5}, {"_longitude", 2.5}}, {"_latitude", "_longitude"});
  checkRecord<LegacyPostQuibletDto>(sample("LegacyPostQuibletDto"),
                                    {"id", "uid", "user", "date", "emoji", "type", "uri", "userName"});
  checkRecord<LegacyPostCommentDto>(sample("LegacyPostCommentDto"),
                                    {"id", "uid", "user", "creationDate", "text", "userName"});
  checkRecord<LegacyPostScreenshotDto>(sample("LegacyPostScreenshotDto"), {"id", "user"});
  checkRecord<LegacyPostDto>(
      sample("LegacyPostDto"),
      {"id", "user", "notificationID", "region", "creationDate", "takenAt", "lateInSeconds", "photoURL", "imageHeight",
       "imageWidth", "secondaryPhotoURL", "secondaryImageHeight", "secondaryImageWidth"});
  checkRecord<DiscoveryDto>({{"posts", {sample("LegacyPostDto")}}, {"lastIndex", "abc"}}, {"posts", "lastIndex"});
}

TEST(PersonRecords, RequireWhatTheyMust) {
  checkRecord<ProfileDeviceDto>(sample("ProfileDeviceDto"), {"deviceId"});
  checkRecord<ProfileQuibletDto>({{"emoji", "😍"}, {"media", sample("MediaDto")}}, {"emoji", "media"});
  checkRecord<ProfileDto>(sample("ProfileDto"),
                          {"id", "username", "devices", "quiblets", "canPost", "canUpdateRegion"});
  checkRecord<ProfileCreateInformationDto>(sample("ProfileCreateInformationDto"),
                                           {"username", "fullname", "birthdate"});
  checkRecord<ProfileInformationDto>(sample("ProfileInformationDto"), {});
  checkRecord<ProfileQuibletUploadDto>({{"emoji", "😍"}, {"media", sample("MediaBucketDto")}}, {"emoji", "media"});
  checkRecord<ProfileQuibletDeleteDto>({{"emoji", "😍"}}, {"emoji"});
  checkRecord<PersonCommonFriendsSampleDto>(sample("PostPerson"), {"id", "username"});
  checkRecord<PersonCommonFriendsDto>(sample("PersonCommonFriendsDto"), {"total"});
  checkRecord<PersonRelationshipsDto>(sample("PersonRelationshipsDto"), {});
  checkRecord<PersonDto>(sample("PersonDto"), {"id", "username", "createdAt", "relationship"});
  checkRecord<SearchPersonDto>(sample("SearchPersonDto"), {"id", "username"});
  checkRecord<RelationshipsPersonDto>(sample("RelationshipsPersonDto"), {"id", "username"});
  checkRecord<BlockedUserDetailsDto>(sample("BlockedUserDetailsDto"), {"id", "username"});
  checkRecord<BlockedUserDto>(
      {{"userId", "u1"}, {"blockedAt", "2023-04-05T17:09:12.345Z"}, {"user", sample("BlockedUserDetailsDto")}},
      {"userId", "blockedAt", "user"});
  checkRecord<UniqueDto<MediaDto>>({{"data", sample("MediaDto")}}, {"data"});
}

TEST(OtherRecords, RequireWhatTheyMust) {
  checkRecord<RegionDto>({{"code", "europe-west"}, {"name", "Western Europe"}}, {"code", "name"});
  checkRecord<RegionUpdateDto>({{"region", "europe-west"}}, {"region"});
  checkRecord<MomentDto>(sample("MomentDto"), {"id", "region"});
  checkRecord<MemoryDto>(sample("MemoryDto"), {"id", "isLate", "memoryDay", "primary"});
  checkRecord<MemoriesDto>(sample("MemoriesDto"), {"data"});
  checkRecord<MemoriesVideoDto>(sample("MemoriesVideoDto"), {"status"});
  checkRecord<MemoriesRecapDto>(sample("MemoriesRecapDto"), {"id", "videoStatus", "year"});
  checkRecord<MemoriesRecapsDto>({{"videos", {sample("MemoriesRecapDto")}}}, {"videos"});
  checkRecord<StatsRecapCardDto>({{"title", "a"}, {"subtitle", "b"}, {"cardType", "c"}}, {"title", "cardType"});
  checkRecord<StatsRecapDto>({{"cards", {{{"title", "a"}, {"cardType", "c"}}}}}, {"cards"});
  const nlohmann::json settings = sample("AppSettingsDto");
  checkRecord<AppSettingsDto>(settings, {"mandatoryVersions", "recommendedVersions", "polling"});
  checkRecord<AppSettingsVersionDto>(settings["mandatoryVersions"], {"ios"});
  checkRecord<AppSettingsPollingDto>(settings["polling"], {"feedsFriends", "moment"});
  checkRecord<AppSettingsAnalyticsDto>(settings["analytics"], {"batch", "metrics"});
  checkRecord<AppSettingsAnalyticsBatchDto>(settings["analytics"]["batch"], {"maxLength", "flushAfterMs"});
  checkRecord<AppSettingsAnalyticsMetricsDto>(settings["analytics"]["metrics"], {"postSustainLookTimeInMs"});
  checkRecord<AppSettingsFeatureFlagsDto>(settings["featureFlags"], {});
  checkRecord<AppSettingsFeatureFlagsSettingsDto>(settings["featureFlagsSettings"], {});
  checkRecord<AppSettingsFeaturesFlagsMessagingDto>(settings["featureFlagsSettings"]["messaging"],
                                                    {"token", "scenario"});
  checkRecord<PushSettingsDto>(
      {{"late", true}, {"comment", true}, {"mention", true}, {"friendRequest", true}, {"quiblet", true}},
      {"late", "comment", "mention", "friendRequest", "quiblet"});
  checkRecord<TermDto>({{"code", "gps"}, {"status", "DECLINED"}}, {"code", "status"});
}

}  // namespace
}  // namespace ZAK
