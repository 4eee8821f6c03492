#include "support/RecordChecks.hpp"
#include "support/Samples.hpp"

#include <zvapikit/model/CreatePostDto.hpp>
#include <zvapikit/model/Identifiers.hpp>
#include <zvapikit/model/PostActionDto.hpp>
#include <zvapikit/model/PostDto.hpp>
#include <zvapikit/model/ReportPostReasonDto.hpp>
#include <zvapikit/model/UploadUrlDto.hpp>

#include <gtest/gtest.h>

#include <string>

namespace ZAK {
namespace {

using nlohmann::json;
using test::checkRecord;
using test::sample;

TEST(PostRecords, RequireWhatTheyMust) {
  checkRecord<MediaDto>(sample("MediaDto"), {"url", "width", "height"});
  checkRecord<MediaBucketDto>(sample("MediaBucketDto"), {"bucket", "path", "width", "height"});
  checkRecord<UploadUrlDto>(sample("UploadUrlDto"), {"url", "expireAt", "bucket", "path", "headers"});
  checkRecord<CreatePostPictureDto>(sample("CreatePostPictureDto"), {"bucket", "path", "width", "height"});
  checkRecord<CreatePostLocationDto>(sample("PostLocationDto"), {"latitude", "longitude"});
  checkRecord<CreatePostDto>(sample("CreatePostDto"),
                             {"takenAt", "backCamera", "frontCamera", "isLate", "visibility", "retakeCounter"});
  checkRecord<NewPostDto>({{"id", "p1"}}, {"id"});
  checkRecord<PostPerson>(sample("PostPerson"), {"id", "username"});
  checkRecord<PostMomentDto>({{"id", "m1"}, {"region", "europe-west"}}, {"id", "region"});
  checkRecord<PostLocationDto>(sample("PostLocationDto"), {"latitude", "longitude"});
  checkRecord<PostQuibletDto>(sample("PostQuibletDto"), {"id", "user", "emoji", "isInstant", "media", "postedAt"});
  checkRecord<PostCommentDto>(sample("PostCommentDto"), {"id", "user", "postedAt", "content"});
  checkRecord<PostScreenshotDto>(sample("PostScreenshotDto"), {"id", "user"});
  checkRecord<SampleCollectionDto<PostScreenshotDto>>({{"sample", {sample("PostScreenshotDto")}}, {"total", 7}},
                                                      {"sample", "total"});
  checkRecord<PostDto>(sample("PostDto"), {"id", "user", "moment", "retakeCounter", "isLate", "lateInSeconds",
                                           "primary", "secondary", "takenAt", "createdAt"});
  checkRecord<CaptionDto>({{"caption", "hi"}}, {"caption"});
  checkRecord<VisibilityDto>({{"visibility", "friends-of-friends"}}, {"visibility"});
  checkRecord<AddCommentDto>({{"content", "hi"}}, {"content"});
  checkRecord<DeleteCommentsDto>({{"commentIds", {"c1", "c2"}}}, {"commentIds"});
  checkRecord<AddQuibletDto>({{"emoji", "😍"}}, {"emoji"});
  checkRecord<AddInstantQuibletDto>({{"media", sample("MediaBucketDto")}}, {"media"});
  checkRecord<DeleteQuibletsDto>({{"quibletIds", {"q1"}}}, {"quibletIds"});
}

TEST(PostDto, FillsItsFields) {
  const auto post = JSONDecoder().decode<PostDto>(sample("PostDto").dump());
  EXPECT_EQ(post.user.profilePicture->url.string(), "https://cdn.zolvi.example/photos/ada.webp?v=1");
  EXPECT_EQ(post.user.status, RelationshipsStatusDto::accepted);
  EXPECT_EQ(post.moment.region, "europe-west");
  EXPECT_EQ(post.visibility, (std::vector{PostVisibilityDto::friends, PostVisibilityDto::fof}));
  EXPECT_EQ(post.comments->total, 7);
  EXPECT_EQ(post.comments->sample.at(0).content, "so nice");
  EXPECT_EQ(post.takenAt, Date(std::chrono::milliseconds(1680714552345)));
  EXPECT_EQ(post.primary.height, 2000.5);
}

TEST(PostDto, ToleratesUnknownVisibilitiesAndNothingElse) {
  json body = sample("PostDto");
  body["visibility"] = {"friends", "Public", "public", ""};
  using enum PostVisibilityDto;
  EXPECT_EQ(JSONDecoder().decode<PostDto>(body.dump()).visibility, (std::vector{friends, unknown, public_, unknown}));
  body["visibility"] = {"friends", nullptr};
  EXPECT_STREQ(test::decodingError<PostDto>(body.dump()).what(), "visibility[1]: expected string, found null");

  body = sample("PostDto");
  body["user"]["status"] = "friend";
  EXPECT_EQ(test::decodingError<PostDto>(body.dump()).kind(), DecodingError::Kind::dataCorrupted);
  body = sample("PostDto");
  body["primary"]["url"] = "";
  EXPECT_STREQ(test::decodingError<PostDto>(body.dump()).what(), "primary.url: Invalid URL string.");
  body = sample("PostDto");
  body["createdAt"] = "2023-04-05";
  EXPECT_EQ(test::decodingError<PostDto>(body.dump()).codingPath(), std::vector<CodingKey>{"createdAt"});
}

TEST(MediaRecords, SizesOfBucketFilesAreWhole) {
  json body = sample("MediaBucketDto");
  body["width"] = 1500.5;
  EXPECT_EQ(test::decodingError<MediaBucketDto>(body.dump()).kind(), DecodingError::Kind::dataCorrupted);
  EXPECT_EQ(JSONDecoder().decode<MediaDto>(R"({"url":"a","width":1500,"height":1})").width, 1500.0);
}

TEST(CreatePostDto, WritesItsFieldsInOrder) {
  const CreatePostDto post(Date(), CreatePostPictureDto("b", "back.jpg", 3, 4),
                           CreatePostPictureDto("b", "front.jpg", 5, 6), true,
                           {PostVisibilityDto::public_, PostVisibilityDto::unknown}, 1, std::nullopt);
  EXPECT_EQ(
      JSONEncoder().encode(post),
      R"({"takenAt":"1970-01-01T00:00:00.000Z","backCamera":{"bucket":"b","path":"back.jpg","width":3,"height":4},)"
      R"("frontCamera":{"bucket":"b","path":"front.jpg","width":5,"height":6},"isLate":true,)"
      R"("visibility":["public","unknown"],"retakeCounter":1})");
}

TEST(PostEnumerations, TravelByRawValue) {
  test::checkRawValues<PostVisibilityDto>({"friends", "friends-of-friends", "public", "unknown"});
  test::checkRawValues<RelationshipsStatusDto>({"pending", "accepted", "rejected", "canceled", "sent"});
  test::checkRawValues<ReportPostReasonDto>({"spam", "scam-or-untrue", "inappropriate-caption", "just-not-for-me",
                                             "nudity-or-sexual", "violent-or-dangerous", "hate-speech-or-symbols",
                                             "suicide-or-self-harm", "other"});
}

TEST(Identifiers, CannotBeSwapped) {
  static_assert(!std::is_convertible_v<std::string, PostId> && !std::is_convertible_v<PostId, UserId>);
  static_assert(!std::is_constructible_v<UserId, PostId>);
}

}  // namespace
}  // namespace ZAK
