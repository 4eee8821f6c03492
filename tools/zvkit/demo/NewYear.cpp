#include "Stage.hpp"

#include <zvapikit/core/ZAKError.hpp>
#include <zvapikit/domains/ContentDomain.hpp>
#include <zvapikit/domains/MemoriesDomain.hpp>
#include <zvapikit/domains/ProfileDomain.hpp>
#include <zvapikit/domains/StatsDomain.hpp>

namespace zvkit {
namespace {

using boost::asio::awaitable;
using ZAK::RecapStatusDto;

awaitable<void> postTwice(Stage* stage) {
  Stage::chapter("Mishaps");
  ZAK::ContentDomain content{stage->app};
  ZAK::CreatePostDto again;
  again.takenAt = stage->clock->now();
  again.backCamera = again.frontCamera = ZAK::CreatePostPictureDto("storage", "photos/again.jpg", 1500, 2000);
  again.visibility = {ZAK::PostVisibilityDto::friends};
  std::optional<ZAK::ZAKError> refusal;
  try {
    co_await content.createMyPost(again);
  } catch (const ZAK::ZAKError& error) {
    refusal = error;
  }
  Stage::check(refusal && refusal->errorDto() && refusal->errorDto()->key() == ZAK::ErrorDto::Key::userAlreadyPosted,
               "a second post is refused");
  stage->step("A second post of the day is refused: " + refusal->errorDescription());
}

awaitable<void> loseTokens(Stage* stage) {
  ZAK::ContentDomain content{stage->app};
  const std::size_t refreshes = stage->exchanges("refresh_token");
  const std::size_t signIns = stage->exchanges("firebase");
  stage->clock->advance(Stage::tokenLifetime);
  const auto changed = co_await content.updateCaption("Coffee first, again ☕");
  Stage::check(stage->exchanges("refresh_token") == refreshes + 1, "one refresh");
  Stage::check(changed.caption == "Coffee first, again ☕", "the caption changed");
  stage->step("An hour later the token had expired: refreshed it, and changed the caption");

  stage->emulator->expireTokens();
  const auto opened = co_await content.updateVisibility(ZAK::PostVisibilityDto::fof);
  Stage::check(stage->exchanges("firebase") == signIns + 1, "one more sign-in");
  Stage::check(opened.visibility == std::vector{ZAK::PostVisibilityDto::fof}, "the post is open");
  stage->step("The server rejected the token: signed in anew, sent the request again, and opened the post to " +
              std::string(rawValue(opened.visibility->front())));
}

awaitable<void> readMemories(Stage* stage) {
  Stage::chapter("The morning after");
  ZAK::MemoriesDomain memories{stage->app};
  ZAK::StatsDomain stats{stage->app};
  const std::size_t refreshes = stage->exchanges("refresh_token");
  stage->clock->advance(std::chrono::hours(24));
  const ZAK::MemoriesDto all = co_await memories.fetchAll();
  Stage::check(stage->exchanges("refresh_token") == refreshes + 1, "one refresh");
  Stage::check(all.data.size() == 1 && all.data.front().memoryDay == "2023-12-31", "the post has become a memory");
  const auto recap = co_await stats.fetch();
  Stage::check(!recap.cards.empty() && recap.cards.front().title == "1", "the statistics count the post");
  stage->step("Overnight the post became the memory of " + all.data.front().memoryDay +
              "; statistics: " + recap.cards.front().cardType + " " + recap.cards.front().title);
}

/// The recap, as the server has it now.
awaitable<ZAK::MemoriesRecapDto> currentRecap(Stage* stage) {
  ZAK::MemoriesDomain memories{stage->app};
  const ZAK::MemoriesRecapsDto recaps = co_await memories.fetchRecaps();
  const auto* const recap = withId(recaps.videos, "recap-2023");
  Stage::check(recap, "there is a recap of the year");
  co_return *recap;
}

awaitable<ZAK::MemoriesRecapDto> generateVideo(Stage* stage) {
  ZAK::MemoriesDomain memories{stage->app};
  ZAK::MemoriesRecapDto recap = co_await currentRecap(stage);
  Stage::check(recap.videoStatus == RecapStatusDto::nonexistent, "there is no video yet");
  recap = co_await memories.generateVideo(recap.id);
  std::string course;
  for (int looks = 0; looks < 10 && recap.videoStatus != RecapStatusDto::done; ++looks) {
    course += std::string(rawValue(recap.videoStatus)) + ", ";
    co_await stage->clock->wait(std::chrono::seconds(10));
    recap = co_await currentRecap(stage);
  }
  Stage::check(recap.videoStatus == RecapStatusDto::done && recap.videoUrl, "the video is done");
  stage->step("Had the video of " + std::to_string(recap.year) + " generated: " + course + "done");
  co_return recap;
}

awaitable<void> watchVideo(Stage* stage) {
  ZAK::MemoriesDomain memories{stage->app};
  const ZAK::MemoriesRecapDto recap = co_await generateVideo(stage);
  ProgressLine line = stage->progressLine();
  const auto received = line.add("recap.mp4 ");
  const auto place = co_await memories.getVideo(recap.videoUrl, false, recap.id, received);
  line.finish();
  const std::filesystem::path file = place.path(memories.directories().documents);
  Stage::check(std::filesystem::file_size(file) == Stage::videoSize, "the video is there as a whole");
  stage->step("Downloaded it to " + *place.documentsPath());

  const std::size_t requests = stage->emulator->requests().size();
  const auto again = co_await memories.getVideo(recap.videoUrl, false, recap.id);
  Stage::check(again == place && stage->emulator->requests().size() == requests, "nothing was asked for");
  stage->step("Watched it again: it came from the device, without a request");

  memories.deleteLocalVideo(recap.videoUrl, recap.id);
  co_await memories.deleteVideos(recap.id);
  const ZAK::MemoriesRecapDto deleted = co_await currentRecap(stage);
  Stage::check(!std::filesystem::exists(file) && deleted.videoStatus == RecapStatusDto::nonexistent,
               "the video is gone");
  stage->step("Deleted it, on the device and on the server");
}

awaitable<void> deleteAccount(Stage* stage) {
  Stage::chapter("Leaving, or not");
  ZAK::ProfileDomain profile{stage->app};
  const ZAK::ProfileDto doomed = co_await profile.deleteAccount();
  Stage::check(doomed.accountDeleteScheduledAt.has_value(), "the deletion is scheduled");
  const auto delay = std::chrono::floor<std::chrono::days>(*doomed.accountDeleteScheduledAt - stage->clock->now());
  stage->step("Deleted the account, which will be gone in " + std::to_string(delay.count()) + " days");

  co_await profile.cancelAccountDeletion();
  const ZAK::ProfileDto saved = co_await profile.fetch();
  Stage::check(!saved.accountDeleteScheduledAt, "the deletion is cancelled");
  stage->step("Cancelled that: @" + saved.username + " stays");
}

awaitable<void> endSession(Stage* stage) {
  const std::size_t signIns = stage->exchanges("firebase") + stage->exchanges("refresh_token");
  stage->app = stage->openApp(stage->mia);
  ZAK::ProfileDomain profile{stage->app};
  co_await profile.fetch();
  Stage::check(stage->exchanges("firebase") + stage->exchanges("refresh_token") == signIns, "no token was asked for");
  stage->step("Opened the app anew: the token came from the keychain");

  const std::size_t removals = stage->mia.keychain->counts().removals;
  co_await stage->app->logout();
  Stage::check(stage->mia.keychain->counts().removals > removals && stage->mia.firebase->token.empty(),
               "the session has ended everywhere");
  stage->step("Signed out: the token is gone from the keychain, and Firebase was told");
}

}  // namespace

awaitable<void> endTheYear(Stage* stage) {
  for (const auto part : {postTwice, loseTokens, readMemories, watchVideo, deleteAccount, endSession})
    co_await part(stage);
}

}  // namespace zvkit
