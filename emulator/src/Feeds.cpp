#include "Archive.hpp"
#include "Call.hpp"
#include "Paging.hpp"
#include "Records.hpp"
#include "Regions.hpp"

#include <algorithm>
#include <charconv>

namespace ZAK {

using nlohmann::json;

namespace {

using Posts = std::vector<const Post*>;

/// The posts of the current moment that fit, newest first.
template <class Predicate>
Posts currentPosts(const Call& call, Predicate fits) {
  const std::string momentId = World::moment(call.now).id;
  Posts posts;
  for (const auto& [id, post] : call.world.posts) {
    if (post.momentId == momentId && fits(post)) posts.push_back(&post);
  }
  std::sort(posts.begin(), posts.end(), &isNewer);
  return posts;
}

/// The friends' posts, and the caller's own, which has no other place in which to be read.
EmulatorResponse friendsFeed(Call& call) {
  call.checkQuery({});
  json feed = json::array();
  for (const Post* const post : currentPosts(call, [&](const Post& candidate) {
         return candidate.userId == call.userId || call.world.areFriends(call.userId, candidate.userId);
       })) {
    feed.push_back(EmulatorRecords::legacyPost(call.world, *post));
  }
  return jsonResponse(feed);
}

bool isPublic(const Post& post) {
  return std::find(post.visibility.begin(), post.visibility.end(), "public") != post.visibility.end();
}

/// A post as the end of a page of the discovery feed; holds when posts are added or deleted meanwhile.
std::string discoveryIndex(Date createdAt, const std::string& id) {
  return std::to_string(createdAt.time_since_epoch().count()) + "/" + id;
}

/// A post at the place that the index names.
Post discoveryPlace(const std::string& index) {
  const std::size_t slash = std::min(index.find('/'), index.size());
  std::int64_t count = 0;
  const auto [end, error] = std::from_chars(index.data(), index.data() + slash, count);
  if (slash == index.size() || error != std::errc() || end != index.data() + slash)
    throw Refusal(400, "lastIndex is not known");
  Post place;
  place.id = index.substr(slash + 1);
  place.createdAt = Date(std::chrono::microseconds(count));
  return place;
}

EmulatorResponse discoveryFeed(Call& call) {
  call.checkQuery({"lastIndex"});
  const bool isFirst = !call.queryItem("lastIndex");
  Posts posts = currentPosts(call, [&](const Post& post) {
    return post.userId != call.userId && isPublic(post) && call.world.mayRead(call.userId, post);
  });
  const std::string last = isFirst ? discoveryIndex(call.now, "") : call.queryValue("lastIndex");
  if (!isFirst) {
    const Post place = discoveryPlace(last);
    std::erase_if(posts, [&](const Post* post) { return !isNewer(&place, post); });
  }
  posts.resize(std::min(posts.size(), call.options.pageSize));
  json page = json::array();
  for (const Post* const post : posts) page.push_back(EmulatorRecords::legacyPost(call.world, *post));
  return jsonResponse(
      {{"posts", std::move(page)},
       {"lastIndex", posts.empty() ? last : discoveryIndex(posts.back()->createdAt, posts.back()->id)}});
}

EmulatorResponse friendsOfFriendsFeed(Call& call) {
  const Posts posts = currentPosts(call, [&](const Post& post) {
    return post.userId != call.userId && !call.world.areFriends(call.userId, post.userId) &&
           call.world.haveCommonFriend(call.userId, post.userId) && call.world.mayRead(call.userId, post);
  });
  return jsonResponse(collection(call, posts, [&](const Post* post) {
    return EmulatorRecords::friendOfFriendPost(call.world, *post, call.userId);
  }));
}

EmulatorResponse lastMoment(Call& call) {
  call.checkQuery({});
  const std::string& code = call.variables.at("regionCode");
  const auto isNamed = [&](const Region& region) { return region.code == code; };
  if (std::none_of(regions().begin(), regions().end(), isNamed)) throw Refusal(404, "there is no such region");
  const Moment moment = World::moment(call.now);
  return jsonResponse({{"id", moment.id},
                       {"region", code},
                       {"startDate", EmulatorText::dateText(moment.startsAt)},
                       {"endDate", EmulatorText::dateText(moment.startsAt + std::chrono::days(1))},
                       {"timezone", "UTC"}});
}

/// The most days in a row with a post; the posts are newest first.
std::int64_t longestStreak(const Posts& posts) {
  std::int64_t longest = 0;
  std::int64_t streak = 0;
  Date previous;
  for (const Post* const post : posts) {
    const Date day = World::moment(post->createdAt).startsAt;
    streak = streak > 0 && previous - day == std::chrono::days(1) ? streak + 1 : 1;
    longest = std::max(longest, streak);
    previous = day;
  }
  return longest;
}

json card(const Call& call, const char* type, std::int64_t count, const char* english, const char* french) {
  const std::string title = std::to_string(count);
  return {{"cardType", type}, {"title", title}, {"subtitle", call.language() == "fr" ? french : english}};
}

/// What the caller's posts add up to, in French or else in English.
EmulatorResponse statistics(Call& call) {
  call.checkQuery({"language"});
  Posts posts = pastPosts(call);
  if (const Post* const post = call.world.postOf(call.userId, World::moment(call.now).id))
    posts.insert(posts.begin(), post);
  const auto onTime = std::count_if(posts.begin(), posts.end(), [](const Post* post) { return !post->isLate; });
  const auto count = static_cast<std::int64_t>(posts.size());
  return jsonResponse({{"cards",
                        {card(call, "posts", count, "posts", "publications"),
                         card(call, "on-time", onTime, "posts on time", "publications à l'heure"),
                         card(call, "streak", longestStreak(posts), "days in a row", "jours d'affilée")}}});
}

}  // namespace

void addFeedRoutes(Router& router) {
  router.add("GET", "/feeds/friends", &friendsFeed);
  router.add("GET", "/feeds/discovery", &discoveryFeed);
  router.add("GET", "/feeds/friends-of-friends", &friendsOfFriendsFeed);
  router.add("GET", "/feeds/user-stats", &statistics);
  router.add("GET", "/zolvi/moments/last/{regionCode}", &lastMoment);
}

}  // namespace ZAK
