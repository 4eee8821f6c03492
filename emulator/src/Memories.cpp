#include "Archive.hpp"
#include "Call.hpp"
#include "Records.hpp"

#include <algorithm>
#include <charconv>

namespace ZAK {

using nlohmann::json;

namespace {

constexpr int mostMemories = 1000;  ///< that may be asked for at once
constexpr int queueLength = 2;      ///< where a recap that is asked for joins the queue

json memory(const Post& post) {
  Picture thumbnail = post.primary;
  thumbnail.width = 150;
  thumbnail.height = 200;
  return {{"id", post.id},
          {"isLate", post.isLate},
          {"memoryDay", EmulatorText::dayText(post.createdAt)},
          {"primary", EmulatorRecords::media(post.primary)},
          {"secondary", EmulatorRecords::media(post.secondary)},
          {"thumbnail", EmulatorRecords::media(thumbnail)}};
}

/// How many memories the caller wants at most.
std::size_t limitOf(const Call& call) {
  if (!call.queryItem("limit")) return mostMemories;
  const std::string text = call.queryValue("limit");
  int limit = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), limit);
  if (error != std::errc() || end != text.data() + text.size() || limit < 1 || limit > mostMemories)
    throw Refusal(400, "limit must be from 1 to " + std::to_string(mostMemories));
  return static_cast<std::size_t>(limit);
}

/// Every post of an earlier moment is a memory, under the post's id.
EmulatorResponse listMemories(Call& call) {
  call.checkQuery({"limit"});
  const std::size_t limit = limitOf(call);
  const auto posts = pastPosts(call);
  json page{{"data", json::array()}, {"memoriesSynchronized", true}};
  for (std::size_t i = 0; i < std::min(limit, posts.size()); ++i) page["data"].push_back(memory(*posts[i]));
  if (limit < posts.size()) page["next"] = posts[limit]->id;
  return jsonResponse(page);
}

EmulatorResponse deleteMemory(Call& call) {
  call.checkQuery({});
  const std::string& id = call.variables.at("id");
  const auto posts = pastPosts(call);
  if (std::none_of(posts.begin(), posts.end(), [&](const Post* post) { return post->id == id; }))
    throw Refusal(404, "there is no such memory");
  if (archiveOf(call).posts.erase(id) == 0) call.world.posts.erase(id);
  return emptyResponse();
}

int yearOf(Date date) {
  return static_cast<int>(std::chrono::year_month_day(std::chrono::floor<std::chrono::days>(date)).year());
}

Date newYear(int year) { return std::chrono::sys_days(std::chrono::year(year) / 1 / 1); }

std::string recapId(int year) { return "recap-" + std::to_string(year); }

/// A year's recap can be asked for during the year after.
std::string statusOf(const Recap& recap, int year, Date now) {
  switch (recap.step) {
    case Recap::Step::queued:
      return "pending";
    case Recap::Step::processing:
      return "processing";
    case Recap::Step::done:
      return "done";
    case Recap::Step::none:
      break;
  }
  if (now < newYear(year + 1)) return "unavailable";
  return now < newYear(year + 2) ? "nonexistent" : "toolate";
}

json recapRecord(const Call& call, int year, const Recap& recap) {
  const std::string status = statusOf(recap, year, call.now);
  json record{{"id", recapId(year)},
              {"videoStatus", status},
              {"year", year},
              {"countdownEnd", EmulatorText::dateText(newYear(year + 1))},
              {"generationWindowEnd", EmulatorText::dateText(newYear(year + 2))},
              {"clientFallback", status == "toolate"}};
  if (recap.step == Recap::Step::queued) record["queuePosition"] = recap.queuePosition;
  if (recap.step == Recap::Step::done) {
    record["videoUrl"] =
        EmulatorRecords::mediaUrl(bucketName(call.world.environment), EmulatorRecords::videoPath(call.userId, year));
  }
  return record;
}

/// The years that have a recap: the current one and the two before.
std::vector<int> recapYears(const Call& call) {
  const int year = yearOf(call.now);
  return {year, year - 1, year - 2};
}

/// The year of the recap that the path names.
int namedYear(const Call& call) {
  for (const int year : recapYears(call)) {
    if (recapId(year) == call.variables.at("id")) return year;
  }
  throw Refusal(404, "there is no such recap");
}

void advance(Recap& recap) {
  if (recap.step == Recap::Step::queued) {
    if (--recap.queuePosition == 0) recap.step = Recap::Step::processing;
  } else if (recap.step == Recap::Step::processing) {
    recap.step = Recap::Step::done;
  }
}

/// Each look at the list brings the videos that were asked for one step on: through the queue, then in the making,
/// then done.
EmulatorResponse listRecaps(Call& call) {
  call.checkQuery({});
  json videos = json::array();
  for (const int year : recapYears(call)) {
    Recap& recap = archiveOf(call).recaps[year];
    advance(recap);
    videos.push_back(recapRecord(call, year, recap));
  }
  return jsonResponse({{"videos", std::move(videos)}});
}

/// Queues the video; one that cannot be had, or was asked for before, stays as it is.
EmulatorResponse generateVideo(Call& call) {
  call.checkQuery({});
  const int year = namedYear(call);
  Recap& recap = archiveOf(call).recaps[year];
  if (statusOf(recap, year, call.now) == "nonexistent") recap = {Recap::Step::queued, queueLength};
  return jsonResponse(recapRecord(call, year, recap));
}

EmulatorResponse deleteVideos(Call& call) {
  call.checkQuery({});
  archiveOf(call).recaps[namedYear(call)] = {};
  return emptyResponse();
}

}  // namespace

void addMemoryRoutes(Router& router) {
  router.add("GET", "/feeds/memories", &listMemories);
  router.add("DELETE", "/feeds/memories/{id}", &deleteMemory);
  router.add("GET", "/feeds/memories/videos", &listRecaps);
  router.add("POST", "/feeds/memories/videos/{id}", &generateVideo);
  router.add("DELETE", "/feeds/memories/videos/{id}", &deleteVideos);
}

}  // namespace ZAK
