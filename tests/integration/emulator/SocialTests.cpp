#include "RawClient.hpp"

namespace ZAK::Tests {
namespace {

using nlohmann::json;
using std::string;

using Ids = std::vector<string>;
const string friends = "/relationships/friends/";
const string requests = "/relationships/friend-requests/";
const string suggestions = "/relationships/suggestions/";
const string blocks = "/moderation/block-users";
const string accept = R"({"status":"accepted"})";

struct Social : EmulatorTest {
  Social()
      : EmulatorTest({.friendsPerUser = 6,  // as many as Bob has
                      .pendingRequestsSent = 3,
                      .pendingRequestsReceived = 2,
                      .pageSize = 2}) {}
};

string asking(const string& userId) { return R"({"userId":")" + userId + R"(","source":"friendsOfFriendsFeed"})"; }

TEST_F(Social, ANewcomerFindsAFriendWhosePostsOpen) {
  const auto profile = [](const char* username, const char* rest) {
    return R"({"fullname":"Zoé Z","birthdate":"2010-01-01T00:00:00.000Z","username":")" + string(username) + '"' +
           rest + '}';
  };
  const char* const consent = R"(,"parentalConsentRequestId":"consent-1","deviceId":"d1")";
  play({{"zoe", "GET /person/me", "", "check-user-exist"},
        {"zoe", "POST " + requests, asking("dave"), "check-user-exist"},
        {"dave", "GET /person/profiles/zoe", "", "404"},
        {"zoe", "POST /person/me", profile("zoé", ""), "missing-parental-consent"},
        {"zoe", "POST /person/me", profile("DAVE.D", consent), "username-not-available"},
        {"zoe", "POST /person/me", profile("zoé", consent), R"({"devices":[{"deviceId":"d1"}]})"},
        {"zoe", "POST /person/me", profile("zoé", consent), "409"},

        {"zoe", "POST " + requests, asking("dave"), R"({"status":"sent"})"},
        {"zoe", "GET " + requests + "sent", "", R"({"data":[{"id":"dave"}]})"},
        {"zoe", "PATCH " + requests + "dave", accept, "404"},  // the sender accepts
        {"zoe", "GET /content/posts/post-dave", "", "404"},
        {"dave", "GET " + requests + "received", "", R"({"data":[{"id":"zoe","status":"pending"}]})"},
        {"dave", "PATCH " + requests + "zoe", accept, R"({"status":"accepted"})"},
        {"zoe", "GET " + friends, "", R"({"data":[{"id":"dave"}]})"},
        {"zoe", "GET " + requests + "sent", "", R"({"data":[]})"},
        {"zoe", "GET /content/posts/post-dave", "", "200"},
        {"dave", "GET /person/profiles/username/ZO%C3%A9", "",
         R"({"relationship":{"friendedAt":"2023-04-05T17:10:00.000Z","commonFriends":{"total":0}}})"},
        {"dave", "DELETE " + friends + "zoe", "", "200"},
        {"zoe", "GET " + friends, "", R"({"data":[]})"},
        {"dave", "DELETE " + friends + "zoe", "", "404"}});
}

TEST_F(Social, FriendRequestsAreAnsweredOrRefused) {
  // Alice has asked Sven; Nora and Omar have asked Alice.
  const string ask = "POST " + requests;
  play({{"alice", ask, asking("alice"), "400"},
        {"alice", ask, asking("bob"), "409"},
        {"alice", ask, asking("sven"), "409"},
        {"alice", ask, asking("nora"), "409"},
        {"alice", ask, asking("nobody"), "404"},
        {"alice", ask, asking("dave"), "201"},
        {"alice", ask, asking("pia"), "201"},
        {"alice", ask, asking("rosa"), "too-many-friend-requests-pending"},
        {"pia", ask, asking("bob"), "friend-has-too-many-friends"},
        {"bob", "PATCH " + requests + "ivan", accept, "too-many-friends"},
        {"rosa", ask, asking("alice"), "friend-has-too-many-friend-requests-pending"},
        {"alice", "PATCH " + requests + "sven", R"({"status":"canceled"})", R"({"status":"canceled"})"},
        {"alice", "PATCH " + requests + "nora", R"({"status":"rejected"})", R"({"status":"rejected"})"},
        {"alice", "PATCH " + requests + "nora", accept, "404"}});
}

TEST_F(Social, ListsGoOnToTheirEndPageByPage) {
  EXPECT_EQ(ids("bob", friends), (Ids{"frida", "gus", "jade", "alice", "carol", "dave"})) << "the latest first";
  EXPECT_EQ(ids("alice", suggestions), (Ids{"frida", "dave", "gus", "hana", "jade", "malik"})) << "Nora asked already";
  play({{"alice", "DELETE " + suggestions + "frida", "", "200"},
        {"alice", "DELETE " + suggestions + "frida", "", "404"}});
  EXPECT_EQ(ids("alice", suggestions), (Ids{"dave", "gus", "hana", "jade", "malik"}));
  EXPECT_EQ(ids("alice", friends + "common/frida"), (Ids{"bob", "carol"}));

  const string next = read("bob", friends).at("next");
  play({{"bob", "GET " + friends + "?page=", "", R"({"data":[],"next":null})"},
        {"bob", "GET " + friends + "?page=2", "", "400"},
        {"bob", "GET " + friends + "?page=start", "", "400"},
        {"bob", "GET " + friends + "?page&page", "", "400"},
        {"bob", "GET " + friends + "?cursor=" + next, "", "400"},
        {"bob", "GET " + suggestions + "?page=" + next, "", "400"},  // the index of another list
        {"alice", "GET " + friends + "?page=" + next, "", "400"}});  // the index of another user
}

TEST_F(Social, BlocksHideTwoUsersFromEachOther) {
  for (const char* id : {"bob", "nora", "pia"}) {
    play({{"alice", "POST " + blocks, json{{"blockedUserId", id}}.dump(), "201"}});
  }
  EXPECT_EQ(ids("alice", blocks), (Ids{"bob", "nora", "pia"}));
  EXPECT_EQ(ids("alice", friends), Ids{"carol"});
  EXPECT_EQ(ids("alice", requests + "received"), Ids{"omar"});
  EXPECT_EQ(ids("alice", suggestions), (Ids{"frida", "hana", "malik"})) << "Dave is a friend of Bob's alone";
  const string bell = "GET /search/profile?query=BELL&limit=5";
  play({{"alice", "GET " + blocks, "", R"({"data":[{"blockedAt":"2023-04-05T17:10:00.000Z"},{}]})"},
        {"alice", "POST " + requests, asking("bob"), "409"},
        {"bob", "POST " + requests, asking("alice"), "404"},
        {"alice", bell, "", R"({"data":[]})"},
        {"bob", "GET /search/profile?query=arnaud&limit=5", "", R"({"data":[]})"},
        {"alice", "GET /person/profiles/bob", "", "404"},
        {"bob", "GET /person/profiles/username/alice", "", "404"},
        {"alice", "GET /content/posts/post-bob", "", "404"},
        {"alice", "DELETE " + blocks + "/", "", "404"},
        {"alice", "DELETE " + blocks + "/bob", "", "200"},
        {"alice", "DELETE " + blocks + "/bob", "", "404"},
        {"alice", bell, "", R"({"data":[{"mutualFriends":1,"status":null}]})"},  // they are friends no more
        {"alice", "GET /search/profile?query=a&limit=5", "", R"({"data":[{},{},{},{},{}]})"}});
}

TEST_F(Social, ProfilesChangeByWhatIsGivenAlone) {
  // A request, and the change that it makes in what is read afterwards.
  const char* const cases[][3] = {
      {"PATCH /person/me", R"({"deviceId":"d","language":"fr"})", R"({"devices":[{"deviceId":"d","language":"fr"}]})"},
      {"PATCH /person/me", R"({"biography":"","location":"Lyon"})", R"({"biography":null,"location":"Lyon"})"},
      {"PATCH /person/me/username", R"({"username":"ff"})", R"({"username":"ff"})"},
      {"PATCH /person/me/username", R"({"username":null})", R"({"username":"frida"})"},
      {"PATCH /person/me/region", R"({"region":"africa"})", R"({"region":"africa","canUpdateRegion":false})"},
      {"PUT /person/me/quiblets",
       R"({"emoji":"😂","media":{"bucket":"zolvi-photos-dev","path":"s.jpg","width":5,"height":6}})",
       R"({"quiblets":[{"emoji":"😂","media":{"url":"https://storage.zolvi.example/zolvi-photos-dev/s.jpg",
           "width":5.0,"height":6.0}}]})"},
      {"DELETE /person/me/quiblets", R"({"emoji":"😂"})", R"({"quiblets":[]})"},
      {"DELETE /person/me", "", R"({"accountDeleteScheduledAt":"2023-04-20T17:10:00.000Z"})"},
      {"PATCH /person/me/cancel-delete", "", R"({"accountDeleteScheduledAt":null})"},
      {"DELETE /person/me/profile-picture", "", R"({"profilePicture":null})"},
  };
  json expected = read("frida", "/person/me");
  EXPECT_EQ(expected.at("biography"), "Coffee first.");
  for (const auto& [request, body, change] : cases) {
    expected.merge_patch(json::parse(change));
    EXPECT_EQ(send("frida", request, body).json(), expected) << request << body;
    EXPECT_EQ(read("frida", "/person/me"), expected) << request;
  }
}

TEST_F(Social, RefusesWhatIsNotInForm) {
  play({{"alice", "POST " + requests, R"({"userId":"dave","source":"fof"})", "400"},
        {"alice", "PATCH " + requests + "nora", R"({"status":"pending"})", "400"},
        {"alice", "GET /search/profile?query=a", "", "400"},
        {"alice", "GET /search/profile?query=a&limit=5&page", "", "400"},
        {"alice", "PATCH /person/me", R"({"birthdate":"2024-01-01T00:00:00.000Z"})", "400"},
        {"alice", "PATCH /person/me/region", R"({"region":"atlantis"})", "400"},
        {"alice", "POST " + blocks, R"({"blockedUserId":"alice"})", "400"},
        {"alice", "POST /moderation/reports/profile", R"({"userId":"bob","reason":"just-not-for-me"})", "400"},
        {"alice", "POST /moderation/reports/post", R"({"postId":"post-bob","reason":"spam","comment":null})", "400"},
        {"alice", "POST /moderation/reports/post", R"({"postId":"post-kofi","reason":"spam"})", "404"},
        {"alice", "POST /moderation/reports/post", R"({"postId":"post-bob","reason":"spam"})", "201"},
        {"alice", "POST /moderation/reports/profile", R"({"userId":"bob","reason":"spam","comment":"x"})", "201"}});
  EXPECT_EQ(emulator_->counts().reports, (std::map<string, std::size_t>{{"spam", 2}}));
}

}  // namespace
}  // namespace ZAK::Tests
