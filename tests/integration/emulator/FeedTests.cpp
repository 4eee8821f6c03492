#include "RawClient.hpp"

namespace ZAK::Tests {
namespace {

using nlohmann::json;
using namespace std::chrono_literals;
using std::string;

using Ids = std::vector<string>;

/// Ann is a friend of Ben, who is a friend of everybody; all but Ann have posted.
struct EmulatorFeeds : EmulatorTest {
  EmulatorFeeds()
      : EmulatorTest({.tokenLifetime = 48h,
                      .pageSize = 2,
                      .users = {{"ann", "ann", "Ann", false, "+33639980101"},
                                {"ben", "ben", "Ben", true},
                                {"c1", "c1", "c1", true},
                                {"c2", "c2", "c2", true},
                                {"c3", "c3", "c3", true}},
                      .friendships = {{"ben", "ann"}, {"ben", "c1"}, {"ben", "c2"}, {"ben", "c3"}},
                      .hasNeighbours = false}) {}
};

Ids authors(const json& posts) {
  Ids ids;
  for (const json& each : posts) ids.push_back(each.at("user").at("id"));
  return ids;
}

TEST_F(EmulatorFeeds, ShowAPostToFriendsThenKeepItAsAMemory) {
  advance(60s + 250ms);
  const json created = send("ann", "POST /content/posts", post).json();
  const string id = created.at("id");
  play({{"ben", "PUT /content/quiblets?postId=" + id + "&postUserId=ann", R"({"emoji":"😍"})", "200"},
        {"ann", "GET /feeds/friends", "", R"([{"user":{"id":"ann"},"location":{"_latitude":48.85,"_longitude":2.35},
          "creationDate":{"_seconds":1680714660,"_nanoseconds":250000000},"quiblets":[{"userName":"ben"}]},
          {"user":{"id":"ben"}}])"},
        {"c1", "GET /feeds/friends", "", R"([{"user":{"id":"c1"}},{"user":{"id":"ben"}}])"},  // no friend of Ann's
        {"ann", "GET /feeds/user-stats?language=fr", "",  // today and the five days before
         R"({"cards":[{},{},{"cardType":"streak","title":"6","subtitle":"jours d'affilée"}]})"}});
  EXPECT_EQ(read("ann", "/feeds/friends").at(0).at("photoURL"), created.at("primary").at("url"));

  advance(24h);
  EXPECT_TRUE(read("ann", "/feeds/friends").empty());
  EXPECT_NE(read("ann", "/zolvi/moments/last/europe-west").at("id"), created.at("moment").at("id"));
  const json memories = read("ann", "/feeds/memories?limit=2").at("data");
  EXPECT_EQ(memories.at(0).at("id"), id);
  EXPECT_EQ(memories.at(1).at("memoryDay"), "2023-04-04");
  for (const json& memory : memories) {
    const string path = "DELETE /feeds/memories/" + memory.at("id").get<string>();
    play({{"ben", path, "", "404"}, {"ann", path, "", "200"}, {"ann", path, "", "404"}});
  }
  EXPECT_EQ(read("ann", "/feeds/memories").at("data").size(), 29u);
  EXPECT_EQ(read("ann", "/feeds/user-stats").at("cards").at(0).at("title"), "29");
}

TEST_F(EmulatorFeeds, PageThroughPostsOfStrangers) {
  play({{"ann", "PUT /content/quiblets?postId=post-c1&postUserId=c1", R"({"emoji":"😍"})", "200"}});
  const json seen = readAll("ann", "/feeds/friends-of-friends");
  EXPECT_EQ(authors(seen), (Ids{"c3", "c2", "c1"}));
  EXPECT_EQ(seen.at(2).at("user").at("relationship").at("commonFriends").at(0).at("username"), "ben");
  EXPECT_EQ(seen.at(2).at("quiblets").at("self").at("emoji"), "😍");

  const auto discovery = [&](const string& query) { return read("ann", "/feeds/discovery" + query); };
  EXPECT_TRUE(discovery("").at("posts").empty());
  for (const char* id : {"c1", "c2", "c3", "ben"}) {
    play({{id, "PATCH /content/posts/visibility", R"({"visibility":"public"})", "200"}});
  }
  const json first = discovery("");
  EXPECT_EQ(authors(first.at("posts")), (Ids{"c3", "c2"}));
  play({{"c2", "DELETE /content/posts", "", "200"}});
  const json second = discovery("?lastIndex=" + first.at("lastIndex").get<string>());
  EXPECT_EQ(authors(second.at("posts")), (Ids{"c1", "ben"})) << "the end of the first page is gone";
  EXPECT_TRUE(discovery("?lastIndex=" + second.at("lastIndex").get<string>()).at("posts").empty());
}

TEST_F(EmulatorFeeds, MakeARecapStepByStep) {
  const string videos = "/feeds/memories/videos";
  const json before = read("ann", videos);
  const auto looksLike = [](const string& recap) {
    return R"({"videos":[{"videoStatus":"unavailable"},)" + recap + ",{}]}";
  };
  play({{"ann", "GET " + videos, "", looksLike(R"({"videoStatus":"nonexistent"})")},  // the year is not over
        {"ann", "POST " + videos + "/recap-2021", "", R"({"videoStatus":"toolate"})"},
        {"ann", "POST " + videos + "/recap-2022", "", R"({"queuePosition":2})"},
        {"ann", "GET " + videos, "", looksLike(R"({"queuePosition":1})")},
        {"ann", "POST " + videos + "/recap-2022", "", R"({"videoStatus":"pending"})"},  // asked for again
        {"ann", "GET " + videos, "", looksLike(R"({"videoStatus":"processing"})")},
        {"ann", "GET " + videos, "", looksLike(R"({"videoStatus":"done",
          "videoUrl":"https://storage.zolvi.example/zolvi-photos-dev/Videos/ann/recap-2022.mp4"})")},
        {"ann", "DELETE " + videos + "/recap-2022", "", "200"},
        {"ann", "GET " + videos, "", before.dump()}});
}

TEST_F(EmulatorFeeds, SignAUserInByPhone) {
  RawClient auth(*emulator_, sandboxAuth);
  const auto vonage = [&](const char* operation, const json& body) {
    return auth.send(string("POST /main/api/vonage/") + operation, body.dump()).json();
  };
  const json asked = vonage("request-code", {{"phoneNumber", "+33 6 39980101"}});
  const json check{{"vonageRequestId", asked.at("vonageRequestId")}, {"code", "123456"}};
  const json verified = vonage("check-code", check);
  EXPECT_EQ(verified.at("uid"), "ann");
  const string grant = firebaseGrant(verified.at("token")).dump();
  const json issued = auth.send("POST /main/token?grant_type=firebase", grant).json();
  RawClient ann(*emulator_, sandboxMobile, issued.at("access_token"));
  EXPECT_EQ(authors(ann.send("GET /main/api/feeds/friends").json()), Ids{"ben"});
}

TEST_F(EmulatorFeeds, KeepPreferencesAndRefuseWhatIsNotInForm) {
  const string settings = "/settings/notification-push";
  const string push = R"({"late":true,"comment":false,"mention":true,"friendRequest":false,"quiblet":true})";
  const string terms = "PUT /terms/show-friends-to-friends";
  const json others = read("ben", settings);
  EXPECT_NE(others, json::parse(push));
  play({{"ann", "PUT " + settings, push, "200"},
        {"ben", "GET " + settings, "", others.dump()},
        {"ann", terms, R"({"status":"DECLINED"})", R"({"code":"show-friends-to-friends","status":"DECLINED"})"},
        {"ann", "POST /analytics/events", R"({"events":[{"a":1},{}]})", "200"},
        {"ann", "POST /feeds/memories/videos/recap-2020", "", "404"},
        {"ann", "GET /zolvi/moments/last/nowhere", "", "404"},
        {"ann", "PUT " + settings, R"({"late":true,"comment":1,"mention":true,"friendRequest":false,"quiblet":true})",
         "400"},
        {"ann", "PUT /terms/gps", R"({"status":"accepted"})", "400"},
        {"ann", "PUT /terms/unknown", R"({"status":"ACCEPTED"})", "404"},
        {"ann", "POST /analytics/events", R"({"events":[1]})", "400"}});
  EXPECT_EQ(emulator_->counts().analyticsEvents, 2u);
  for (const char* query : {"friends?x", "discovery?lastIndex", "discovery?lastIndex=7", "friends-of-friends?page=7",
                            "friends-of-friends?page&page", "user-stats?language=", "memories?limit=0",
                            "memories?limit=1001", "memories?limit=1x"}) {
    play({{"ann", string("GET /feeds/") + query, "", "400"}});
  }
}

}  // namespace
}  // namespace ZAK::Tests
