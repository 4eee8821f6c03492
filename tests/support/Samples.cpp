#include "support/Samples.hpp"

#include <sstream>
#include <stdexcept>

namespace ZAK::Tests {
namespace {

using nlohmann::json;

/// `?` ends a key that may be missing; `$` begins the name of a record whose sample stands there.
struct Sample {
  const char* records;  ///< their names; they look alike
  const char* text;
};

constexpr Sample samples[] = {
    // Posts
    {"MediaDto", R"({"url":"https://cdn.zolvi.example/a.webp?v=1","width":1500.0,"height":2000.5})"},
    {"MediaBucketDto CreatePostPictureDto", R"({"bucket":"storage","path":"photos/a.jpg","width":1500,"height":2000})"},
    {"PostLocationDto CreatePostLocationDto FofLocationDto", R"({"latitude":48.85,"longitude":-2.35})"},
    {"PostMomentDto FofMomentDto", R"({"id":"m1","region":"europe-west"})"},
    {"PostPerson PersonCommonFriendsSampleDto",
     R"({"id":"u1","username":"ada","fullname?":"Ada L.","profilePicture?":"$MediaDto","status?":"accepted"})"},
    {"PostQuibletDto", R"({"id":"q1","user":"$PostPerson","emoji":"😍","isInstant":true,"media":"$MediaDto",
        "postedAt":"2023-04-05T17:10:00.000Z"})"},
    {"PostCommentDto", R"({"id":"c1","user":"$PostPerson","postedAt":"2023-04-05T17:11:00.000Z","content":"so nice"})"},
    {"PostScreenshotDto", R"({"id":"s1","user":"$PostPerson"})"},
    {"SampleCollectionDto<PostQuibletDto>", R"({"sample":["$PostQuibletDto"],"total":7})"},
    {"PostDto", R"({"id":"p1","user":"$PostPerson","moment":"$PostMomentDto","location?":"$PostLocationDto",
        "visibility?":["friends","friends-of-friends"],"caption?":"a day / a night","retakeCounter":2,"isLate":true,
        "lateInSeconds":90,"primary":"$MediaDto","secondary":"$MediaDto",
        "quiblets?":"$SampleCollectionDto<PostQuibletDto>","comments?":{"sample":["$PostCommentDto"],"total":8},
        "screenshots?":{"sample":["$PostScreenshotDto"],"total":9},"takenAt":"2023-04-05T17:09:12.345Z",
        "createdAt":"2023-04-05T17:09:13.000Z"})"},
    {"CreatePostDto", R"({"takenAt":"2023-04-05T17:09:12.345Z","backCamera":"$MediaBucketDto","isLate":true,
        "frontCamera":"$MediaBucketDto","visibility":["friends"],"retakeCounter":1,"location?":"$PostLocationDto"})"},
    {"UploadUrlDto", R"({"url":"https://storage.example/b/o?signature=a%2Bb","expireAt":"2023-04-05T18:00:00.000Z",
        "bucket":"storage","path":"photos/a.jpg","headers":{"Cache-Control":"private","x-goog-meta":""}})"},
    {"NewPostDto", R"({"id":"p1"})"},
    {"CaptionDto", R"({"caption":"hi"})"},
    {"VisibilityDto", R"({"visibility":"friends-of-friends"})"},
    {"AddCommentDto", R"({"content":"hi"})"},
    {"DeleteCommentsDto", R"({"commentIds":["c1","c2"]})"},
    {"AddQuibletDto ProfileQuibletDeleteDto", R"({"emoji":"😍"})"},
    {"AddInstantQuibletDto", R"({"media":"$MediaBucketDto"})"},
    {"DeleteQuibletsDto", R"({"quibletIds":["q1"]})"},

    // Feeds
    {"FofCommonFriendDto BlockedUserDetailsDto",
     R"({"id":"u1","username":"ada","fullname?":"Ada L.","profilePicture?":"$MediaDto"})"},
    {"FofRelationshipDto", R"({"commonFriends?":["$FofCommonFriendDto"]})"},
    {"FofUserDto", R"({"id":"u1","username":"ada","fullname?":"Ada L.","profilePicture?":"$MediaDto",
        "relationship?":"$FofRelationshipDto"})"},
    {"FofQuibletUserDto", R"({"id":"u2","username":"bob"})"},
    {"FofQuibletDto", R"({"id":"q1","user":"$FofQuibletUserDto","media":"$MediaDto","emoji":"😍","isInstant":true,
        "postedAt":"2023-04-05T17:10:00.000Z"})"},
    {"FofQuibletsRootDto", R"({"total":3,"self?":"$FofQuibletDto","sample":["$FofQuibletDto"]})"},
    {"FofPostDto", R"({"id":"p1","user":"$FofUserDto","moment":"$FofMomentDto","primary":"$MediaDto",
        "secondary":"$MediaDto","location?":"$FofLocationDto","caption?":"a day","takenAt":"2023-04-05T17:09:12.345Z",
        "postedAt":"2023-04-05T17:09:13.000Z","lateInSeconds":90,"quiblets?":"$FofQuibletsRootDto"})"},
    {"LegacyPostUserDto", R"({"id":"u1","username":"ada","profilePicture?":"$MediaDto"})"},
    {"LegacyPostDateDto", R"({"_seconds":1680714552,"_nanoseconds":345000000})"},
    {"LegacyPostLocation", R"({"_latitude":48.85,"_longitude":-2.35})"},
    {"LegacyPostQuibletDto", R"({"id":"q1","uid":"u1","user":"$LegacyPostUserDto","emoji":"😍","type":"instant",
        "uri":"https://cdn.zolvi.example/q.webp","userName":"ada","date":"$LegacyPostDateDto"})"},
    {"LegacyPostCommentDto", R"({"id":"c1","uid":"u1","user":"$LegacyPostUserDto","text":"so nice","userName":"ada",
        "creationDate":"$LegacyPostDateDto"})"},
    {"LegacyPostScreenshotDto", R"({"id":"s1","user":"$LegacyPostUserDto"})"},
    {"LegacyPostDto", R"({"id":"p1","user":"$LegacyPostUserDto","notificationID":"n1","region":"europe-west",
        "creationDate":"$LegacyPostDateDto","takenAt":"$LegacyPostDateDto","updatedAt?":1680714700123,
        "lateInSeconds":90,"photoURL":"https://cdn.zolvi.example/1.webp","imageHeight":2000.5,"imageWidth":1500.0,
        "secondaryPhotoURL":"https://cdn.zolvi.example/2.webp","secondaryImageHeight":1000.5,
        "secondaryImageWidth":750.0,"geoHash?":"u09","location?":"$LegacyPostLocation","caption?":"a day",
        "screenshots?":["u2"],"screenshotsV2?":["$LegacyPostScreenshotDto"],"comment?":["$LegacyPostCommentDto"],
        "quiblets?":["$LegacyPostQuibletDto"],"visibility?":["friends","nobody"],"retakeCounter?":2})"},
    {"DiscoveryDto", R"({"posts":["$LegacyPostDto"],"lastIndex":"abc"})"},

    // People
    {"ProfileDeviceDto", R"({"deviceId":"d1","device?":"Pixel","platform?":"linux","timezone?":"Europe/Paris",
        "pushToken?":"push-1","language?":"fr","clientVersion?":"1.2.3"})"},
    {"ProfileQuibletDto", R"({"emoji":"😍","media":"$MediaDto"})"},
    {"ProfileQuibletUploadDto", R"({"emoji":"😍","media":"$MediaBucketDto"})"},
    {"ProfileDto", R"({"id":"u1","username":"ada","devices":["$ProfileDeviceDto"],"quiblets":["$ProfileQuibletDto"],
        "fullname?":"Ada L.","phoneNumber?":"+33123456789","profilePicture?":"$MediaDto","biography?":"mathematics",
        "location?":"London","countryCode?":"GB","region?":"europe-west","canPost":true,"canUpdateRegion":true,
        "newUsername?":"ada2","accountDeleteScheduledAt?":"2023-05-05T00:00:00.000Z",
        "createdAt?":"2022-01-01T00:00:00.000Z"})"},
    {"ProfileInformationDto", R"({"username?":"ada","fullname?":"Ada L.","biography?":"mathematics",
        "location?":"London","birthdate?":"1990-12-10T00:00:00.000Z","device?":"Pixel","deviceId?":"d1",
        "platform?":"linux","timezone?":"Europe/Paris","pushToken?":"push-1","language?":"fr",
        "clientVersion?":"1.2.3"})"},
    {"ProfileCreateInformationDto", R"({"username":"ada","fullname":"Ada L.","birthdate":"1990-12-10T00:00:00.000Z",
        "device?":"Pixel","deviceId?":"d1","platform?":"linux","timezone?":"Europe/Paris","pushToken?":"push-1",
        "language?":"fr","clientVersion?":"1.2.3","parentalConsentRequestId?":"consent-1"})"},
    {"PersonCommonFriendsDto", R"({"sample?":["$PersonCommonFriendsSampleDto"],"total":7})"},
    {"PersonRelationshipsDto", R"({"status?":"sent","commonFriends?":"$PersonCommonFriendsDto",
        "friendedAt?":"2023-01-01T00:00:00.000Z"})"},
    {"PersonDto", R"({"id":"u1","username":"ada","createdAt":"2022-01-01T00:00:00.000Z","fullname?":"Ada L.",
        "profilePicture?":"$MediaDto","biography?":"mathematics","location?":"London",
        "relationship":"$PersonRelationshipsDto"})"},
    {"SearchPersonDto", R"({"id":"u1","username":"ada","fullname?":"Ada L.","profilePicture?":"$MediaDto",
        "status?":"accepted","mutualFriends?":3})"},
    {"RelationshipsPersonDto", R"({"id":"u1","username":"ada","fullname?":"Ada L.","profilePicture?":"$MediaDto",
        "status?":"accepted","mutualFriends?":3,"hashedPhoneNumber?":"abc","createdAt?":"2022-01-01T00:00:00.000Z",
        "updatedAt?":"2022-01-02T00:00:00.000Z"})"},
    {"BlockedUserDto", R"({"userId":"u1","blockedAt":"2023-04-05T17:09:12.345Z","user":"$BlockedUserDetailsDto"})"},
    {"UniqueDto<MediaDto>", R"({"data":"$MediaDto"})"},

    // The rest
    {"RegionDto", R"({"code":"europe-west","name":"Western Europe"})"},
    {"RegionUpdateDto", R"({"region":"europe-west"})"},
    {"MomentDto", R"({"id":"m1","region":"europe-west","startDate?":"2023-04-05T17:07:00.000Z",
        "endDate?":"2023-04-05T17:09:00.000Z","timezone?":"Europe/Paris"})"},
    {"MemoryDto", R"({"id":"p1","isLate":true,"memoryDay":"2023-07-14","primary":"$MediaDto","secondary?":"$MediaDto",
        "thumbnail?":"$MediaDto"})"},
    {"MemoriesDto", R"({"data":["$MemoryDto"],"next?":"after","prev?":"before","memoriesSynchronized?":true})"},
    {"MemoriesVideoDto", R"({"status":"done","url?":"https://cdn.zolvi.example/v.mp4","primary?":"$MediaDto",
        "secondary?":"$MediaDto"})"},
    {"MemoriesRecapDto", R"({"id":"r1","videoStatus":"done","year":2023,"countdownEnd?":"2023-12-31T23:00:00.000Z",
        "generationWindowEnd?":"2024-01-31T23:00:00.000Z","queuePosition?":12,
        "videoUrl?":"https://cdn.zolvi.example/r.mp4","clientFallback?":true})"},
    {"MemoriesRecapsDto", R"({"videos":["$MemoriesRecapDto"]})"},
    {"StatsRecapCardDto", R"({"title":"a","subtitle?":"b","cardType":"c"})"},
    {"StatsRecapDto", R"({"cards":["$StatsRecapCardDto"]})"},
    {"AppSettingsVersionDto", R"({"ios":"1.0.0"})"},
    {"AppSettingsPollingDto", R"({"feedsFriends":30,"moment":60})"},
    {"AppSettingsAnalyticsBatchDto", R"({"maxLength":20,"flushAfterMs":5000})"},
    {"AppSettingsAnalyticsMetricsDto", R"({"postSustainLookTimeInMs":700})"},
    {"AppSettingsAnalyticsDto",
     R"({"batch":"$AppSettingsAnalyticsBatchDto","metrics":"$AppSettingsAnalyticsMetricsDto"})"},
    {"AppSettingsFeatureFlagsDto", R"({"friendsOfFriendsFeed?":true,"messaging?":false,"analytics?":true})"},
    {"AppSettingsFeaturesFlagsMessagingDto", R"({"token":"m1","scenario":"no_limit_vanish"})"},
    {"AppSettingsFeatureFlagsSettingsDto", R"({"messaging?":"$AppSettingsFeaturesFlagsMessagingDto"})"},
    {"AppSettingsDto", R"({"mandatoryVersions":"$AppSettingsVersionDto","recommendedVersions":"$AppSettingsVersionDto",
        "polling":"$AppSettingsPollingDto","analytics?":"$AppSettingsAnalyticsDto",
        "featureFlags?":"$AppSettingsFeatureFlagsDto",
        "featureFlagsSettings?":"$AppSettingsFeatureFlagsSettingsDto"})"},
    {"PushSettingsDto", R"({"late":true,"comment":false,"mention":true,"friendRequest":false,"quiblet":true})"},
    {"TermDto", R"({"code":"gps","status":"DECLINED"})"},
    {"ErrorDto", R"({"error":"Conflict","statusCode":409,"message?":"taken","errorKey?":"username-not-available",
        "requestId?":"request-1","timestamp?":"now"})"},
    {"CollectionDto<std::string>", R"({"data":["a","b"],"next?":"abc"})"},
    {"TokenRequestDto", R"({"grant_type":"firebase","client_id":"app","client_secret":"secret",
        "refresh_token?":"refresh-1","token?":"firebase-1"})"},
    {"TokenDto", R"({"token_type":"Bearer","access_token":"access-1","refresh_token":"refresh-1","scope":"all",
        "firebase_token":"firebase-1","expires_date":"2023-04-05T18:00:00.000Z"})"},
};

json marked(std::string_view record) {
  for (const Sample& sample : samples) {
    std::istringstream names(sample.records);
    for (std::string name; names >> name;) {
      if (name == record) return json::parse(sample.text);
    }
  }
  throw std::invalid_argument("no sample of " + std::string(record));
}

json filled(json value) {
  if (value.is_string() && value.get_ref<const std::string&>().starts_with('$')) {
    return sample(value.get<std::string>().substr(1));
  }
  if (value.is_array()) {
    for (json& element : value) element = filled(element);
  }
  if (!value.is_object()) return value;
  json object = json::object();
  for (const auto& [key, content] : value.items()) object[key.substr(0, key.find('?'))] = filled(content);
  return object;
}

}  // namespace

json sample(std::string_view record) { return filled(marked(record)); }

std::set<std::string> optionalKeys(std::string_view record) {
  const json body = marked(record);
  std::set<std::string> keys;
  for (const auto& [key, content] : body.items()) {
    if (key.ends_with('?')) keys.insert(key.substr(0, key.size() - 1));
  }
  return keys;
}

}  // namespace ZAK::Tests
