#include "Stage.hpp"

#include <zvapikit/core/Pager.hpp>
#include <zvapikit/domains/AnalyticsDomain.hpp>
#include <zvapikit/domains/ContentDomain.hpp>
#include <zvapikit/domains/FeedsDomain.hpp>
#include <zvapikit/domains/ModerationBlockDomain.hpp>
#include <zvapikit/domains/ModerationReportDomain.hpp>
#include <zvapikit/domains/ProfileDomain.hpp>
#include <zvapikit/domains/SearchDomain.hpp>
#include <zvapikit/domains/UploadDomain.hpp>

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/deferred.hpp>
#include <boost/asio/experimental/parallel_group.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <nlohmann/json.hpp>

#include <fstream>

namespace zvkit {
namespace {

using boost::asio::awaitable;

const ZAK::PostId fridasPost("post-frida");
const ZAK::UserId frida("frida");

/// Runs two pieces of work at once. The first that fails cancels the other, and is the one that is told.
awaitable<void> both(awaitable<void> one, awaitable<void> other) {
  namespace asio = boost::asio;
  const auto executor = co_await asio::this_coro::executor;
  auto group = asio::experimental::make_parallel_group(asio::co_spawn(executor, std::move(one), asio::deferred),
                                                       asio::co_spawn(executor, std::move(other), asio::deferred));
  const auto [order, ofOne, ofOther] =
      co_await group.async_wait(asio::experimental::wait_for_one_error(), asio::use_awaitable);
  const std::exception_ptr failures[]{ofOne, ofOther};
  for (const std::size_t i : order) {
    if (failures[i]) std::rethrow_exception(failures[i]);
  }
}

/// The two cameras' pictures, one from memory and one from a file. Yields where they are now.
awaitable<std::vector<ZAK::UploadUrlDto>> uploadBoth(Stage* stage, std::string back, std::string front) {
  Stage::chapter("The post of the day");
  ZAK::UploadDomain uploads{stage->app};
  const auto urls = co_await uploads.askPostUploadUrls();
  Stage::check(urls.data.size() == 2, "there is a URL for each camera");
  stage->step("Took two pictures, and got a signed upload URL for each");

  const std::filesystem::path frontFile = *stage->files / "front.jpg";
  std::ofstream(frontFile, std::ios::binary) << front;
  const std::size_t connections = stage->emulator->counts().connections;
  ProgressLine line = stage->progressLine();
  auto first = uploads.upload(back, urls.data[0], line.add("back "));
  auto second = uploads.uploadFile(frontFile, urls.data[1], line.add("front "));
  co_await both(std::move(first), std::move(second));
  line.finish();
  const auto counts = stage->emulator->counts();
  Stage::check(counts.of("PUT /{path...}") == 2, "the storage took two files");
  Stage::check(counts.connections > connections, "one did not wait for the other's connection");
  stage->step("Uploaded both at once, straight into the storage");
  co_return urls.data;
}

awaitable<void> post(Stage* stage) {
  const std::string back = jpeg(3'000'000);
  const std::string front = jpeg(2'000'000);
  const auto places = co_await uploadBoth(stage, back, front);

  ZAK::ContentDomain content{stage->app};
  ZAK::CreatePostDto newPost;
  newPost.takenAt = stage->clock->now();
  newPost.backCamera = places[0].picture(1500, 2000);
  newPost.frontCamera = places[1].picture(1500, 2000);
  newPost.visibility = {ZAK::PostVisibilityDto::friends};
  newPost.location = ZAK::CreatePostLocationDto(48.8566, 2.3522);
  const ZAK::PostDto published = co_await content.createMyPost(newPost);
  Stage::check(published.visibility == newPost.visibility, "the post is the friends' alone");
  const std::string backCopy = co_await downloaded(stage, published.primary.url);
  const std::string frontCopy = co_await downloaded(stage, published.secondary.url);
  Stage::check(backCopy == back && frontCopy == front, "the post shows the pictures that were uploaded");
  stage->step("Published " + published.id + " with them, visible to friends");

  const ZAK::PostDto captioned = co_await content.updateCaption("Coffee first ☕");
  Stage::check(captioned.id == published.id && captioned.caption == "Coffee first ☕", "the post has the caption");
  stage->step("Gave it the caption \"" + *captioned.caption + "\"");
}

awaitable<void> readFeeds(Stage* stage) {
  ZAK::FeedsDomain feeds{stage->app};
  const std::vector<ZAK::LegacyPostDto> friends = co_await feeds.fetchFriends();
  const auto* const fridas = withId(friends, fridasPost.value);
  Stage::check(fridas && friends.size() == 2, "Frida's post and Mia's own are there");
  stage->step("Friends' feed: her own post, and Frida's \"" + fridas->caption.value_or("") + "\"");

  auto fof = ZAK::pages(feeds, &ZAK::FeedsDomain::fetchFof);
  std::string authors;
  while (const auto post = co_await fof.nextElement()) {
    authors += (authors.empty() ? "@" : ", @") + post->user.username;
  }
  Stage::check(stage->emulator->counts().of("GET /feeds/friends-of-friends") > 1, "the feed has several pages");
  stage->step("Friends' friends, one by one as the pager turns the pages: " + authors);
}

awaitable<void> discover(Stage* stage) {
  ZAK::FeedsDomain feeds{stage->app};
  ZAK::DiscoveryDto page = co_await feeds.fetchDiscovery();
  std::vector<std::string> captions;
  while (!page.posts.empty()) {
    for (const auto& found : page.posts) captions.push_back(found.caption.value_or(""));
    page = co_await feeds.fetchDiscovery(page.lastIndex);
  }
  Stage::check(captions.size() == 3, "there are three public posts");
  stage->step("Discovery, read to its end: " + std::to_string(captions.size()) + " posts, such as \"" +
              captions.front() + "\"");
}

awaitable<void> comment(Stage* stage) {
  Stage::chapter("Reactions");
  ZAK::FeedsDomain feeds{stage->app};
  ZAK::ContentDomain content{stage->app};
  const auto first = co_await content.addComment("Third cup?!", fridasPost, frida);
  const auto second = co_await content.addComment("oops", fridasPost, frida);
  const std::vector<std::string> unwanted{second.id};
  co_await content.deleteComments(unwanted, fridasPost, frida);
  const auto posts = co_await feeds.fetchFriends();
  const auto* const post = withId(posts, fridasPost.value);
  Stage::check(post && post->comment && withId(*post->comment, first.id) && !withId(*post->comment, second.id),
               "one comment is left");
  stage->step("Commented \"" + first.content + "\" on Frida's post, and took \"" + second.content + "\" back");
}

awaitable<void> reactWithEmoji(Stage* stage) {
  ZAK::UploadDomain uploads{stage->app};
  ZAK::ProfileDomain profile{stage->app};
  ZAK::ContentDomain content{stage->app};
  const auto target = co_await uploads.askProfileQuibletUploadUrl();
  const std::string selfie = jpeg(300'000);
  co_await uploadPicture(stage, "selfie", selfie, target);
  const ZAK::ProfileQuibletUploadDto stored("😍", target.media(500, 500));
  co_await profile.updateQuiblet(stored);

  const auto reaction = co_await content.addEmoji("😍", fridasPost, frida);
  const std::string shown = co_await downloaded(stage, reaction.media.url);
  Stage::check(reaction.emoji == "😍" && shown == selfie, "the reaction shows the stored selfie");
  stage->step("Stored a selfie for " + reaction.emoji + ", and reacted with it");
}

awaitable<void> reactInstantly(Stage* stage) {
  ZAK::UploadDomain uploads{stage->app};
  ZAK::ContentDomain content{stage->app};
  const auto target = co_await uploads.askInstantQuibletUploadUrl();
  const std::string selfie = jpeg(400'000);
  co_await uploadPicture(stage, "instant", selfie, target);
  const ZAK::AddInstantQuibletDto instant(target.media(500, 500));
  const auto reaction = co_await content.addInstant(instant, fridasPost, frida);
  const std::string shown = co_await downloaded(stage, reaction.media.url);
  Stage::check(reaction.isInstant && shown == selfie, "the reaction shows the selfie just taken");
  stage->step("Reacted with a selfie of the instant, " + reaction.emoji);
}

awaitable<void> report(Stage* stage) {
  ZAK::ModerationReportDomain reports{stage->app};
  co_await reports.reportPost(ZAK::PostId("post-omar"), ZAK::ReportPostReasonDto::justNotForMe);
  co_await reports.reportProfile(ZAK::UserId("omar"), ZAK::ReportProfileReasonDto::other, "Always the same bus");
  const auto reported = stage->emulator->counts().reports;
  Stage::check(reported.contains("just-not-for-me") && reported.contains("other"), "the moderators have both reports");
  stage->step("Reported Omar's post, and Omar");

  ZAK::ModerationBlockDomain blocks{stage->app};
  ZAK::SearchDomain search{stage->app};
  co_await blocks.blockUser(ZAK::UserId("omar"));
  const auto blocked = co_await blocks.fetchBlockedUsers();
  const auto hidden = co_await search.searchPersons("omar", 5);
  Stage::check(blocked.data.size() == 1 && blocked.data.front().userId == "omar" && hidden.data.empty(),
               "Omar is blocked");
  co_await blocks.unblockUser(ZAK::UserId("omar"));
  const auto found = co_await search.searchPersons("omar", 5);
  Stage::check(found.data.size() == 1, "Omar is found again");
  stage->step("Blocked @" + blocked.data.front().user.username +
              ", whom no search found any more, and thought better of it");
}

awaitable<void> tellAnalytics(Stage* stage) {
  ZAK::AnalyticsDomain analytics{stage->app};
  std::vector<ZAK::AnalyticsEventDto> events;
  events.emplace_back(nlohmann::json{{"name", "post-seen"}, {"postId", fridasPost.value}});
  events.emplace_back(nlohmann::json{{"name", "app-closed"}, {"afterSeconds", 312.5}});
  co_await analytics.send(events);
  Stage::check(stage->emulator->counts().analyticsEvents == events.size(), "both events were counted");
  stage->step("Sent " + std::to_string(events.size()) + " analytics events in a batch");
}

}  // namespace

awaitable<void> postAndReact(Stage* stage) {
  for (const auto part : {post, readFeeds, discover}) co_await part(stage);
  for (const auto part : {comment, reactWithEmoji, reactInstantly, report, tellAnalytics}) co_await part(stage);
}

}  // namespace zvkit
