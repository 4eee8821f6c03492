#include "Catalogue.hpp"
#include "Kit.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <span>

namespace ZAK::Tests {
namespace {

using nlohmann::json;

/// One operation as `Kit::perform` takes it, and the request that it must become.
struct Row {
  const char* operation;
  const char* arguments;
  const char* request;  ///< see `text`; `*` stands for the rest; empty when there is none
  const char* body;     ///< JSON, or `bytes`, or `form`; empty for none
  const char* result;
};

// The first call of somebody new.
const Row newcomersRows[] = {
    {"profile.create", R"({"infos":{"username":"zoe","fullname":"Zoé","birthdate":"2000-01-02T03:04:05.006Z"},
                           "parentalConsentRequestId":"consent-1"})",
     "POST /person/me",
     R"({"username":"zoe","fullname":"Zoé","birthdate":"2000-01-02T03:04:05.006Z",
         "parentalConsentRequestId":"consent-1"})",
     R"({"username":"zoe","fullname":"Zoé"})"},
};

// One day of Alice's: the calls follow one another on one back-end.
const Row alicesRows[] = {
    {"feeds.fetchFriends", "{}", "GET /feeds/friends", "", R"([{"id":"post-bob","user":{"id":"bob"}}])"},
    {"feeds.fetchDiscovery", "{}", "GET /feeds/discovery", "", R"({"posts":[{"id":"post-quinn"}]})"},
    {"feeds.fetchDiscovery", R"({"lastIndex":"a b/&"})", "GET /feeds/discovery?lastIndex=a%20b%2F%26", "", "400"},
    {"feeds.fetchFof", "{}", "GET /feeds/friends-of-friends", "", R"({"data":[{"user":{"id":"dave"}}]})"},
    {"feeds.fetchFof", R"({"cursor":"start"})", "GET /feeds/friends-of-friends?page", "",
     R"({"data":[{"user":{"id":"dave"}}]})"},
    {"feeds.fetchFof", R"({"cursor":"end"})", "GET /feeds/friends-of-friends?page=", "", R"({"data":[]})"},
    {"feeds.fetchFof", R"({"cursor":{"nextIndex":"x+y"}})", "GET /feeds/friends-of-friends?page=x%2By", "", "400"},
    {"moment.fetch", R"({"region":"europe-west"})", "GET /zolvi/moments/last/europe-west", "",
     R"({"region":"europe-west"})"},
    {"stats.fetch", R"({"language":"fr"})", "GET /feeds/user-stats?language=fr", "", "{}"},
    {"stats.fetch", "{}", "GET /feeds/user-stats", "", "{}"},

    {"memories.fetchAll", "{}", "GET /feeds/memories", "", R"({"data":[{}]})"},
    {"memories.fetchFirst", R"({"limit":1})", "GET /feeds/memories?limit=1", "", R"({"data":[{}]})"},
    {"memories.deleteMemory", R"({"memoryId":"no such/one"})", "DELETE /feeds/memories/no%20such%2Fone", "", "404"},
    {"memories.fetchRecaps", "{}", "GET /feeds/memories/videos", "", R"({"videos":[{}]})"},
    {"memories.generateVideo", R"({"for":"none"})", "POST /feeds/memories/videos/none", "", "404"},
    {"memories.deleteVideos", R"({"for":"none"})", "DELETE /feeds/memories/videos/none", "", "404"},

    {"memories.generateVideo", R"({"for":"recap-2022"})", "POST /feeds/memories/videos/recap-2022", "",
     R"({"videoStatus":"pending"})"},
    {"memories.fetchRecaps", "{}", "GET /feeds/memories/videos", "", R"({"videos":[{"videoStatus":"pending"}]})"},
    {"memories.fetchRecaps", "{}", "GET /feeds/memories/videos", "", R"({"videos":[{"videoStatus":"processing"}]})"},
    {"memories.fetchRecaps", "{}", "GET /feeds/memories/videos", "", R"({"videos":[{"videoStatus":"done"}]})"},
    {"memories.getVideo", R"({"url":"$/videos/1/videoUrl","force":false,"recapName":"2022"})",
     "GET storage.zolvi.example/zolvi-photos-dev/Videos/alice/recap-2022.mp4", "",
     R"({"documents":{"path":"memories/server/Zolvi 2022 Video Recap.mp4"}})"},
    {"memories.getLocalVideoLocation", R"({"remoteUrl":"https://x.example/v.mp4","recapName":"2022"})", "", "",
     R"({"documents":{"path":"memories/server/Zolvi 2022 Video Recap.mp4"}})"},
    {"memories.deleteLocalVideo", R"({"remoteUrl":"https://x.example/v.mp4","recapName":"2022"})", "", "", ""},
    {"memories.getLocalVideoLocation", R"({"remoteUrl":"https://x.example/v.mp4","recapName":"2022"})", "", "", "null"},
    {"memories.downloadPhoto",
     R"({"url":"https://storage.zolvi.example/zolvi-photos-dev/Photos/bob/post/back.jpg","destination":"DIR/back.jpg"})",
     "GET storage.zolvi.example/zolvi-photos-dev/Photos/bob/post/back.jpg", "", ""},

    {"upload.askPostUploadUrls", "{}", "GET /content/posts/upload-url?mimeType=image%2Fjpeg", "",
     R"({"data":[{"bucket":"zolvi-photos-dev"}]})"},
    {"upload.upload", R"({"data":"@DIR/back.jpg","with":"$/data/1"})",
     "PUT storage.zolvi.example/zolvi-photos-dev/Photos/alice/post/*", "bytes", ""},
    {"upload.askProfileQuibletUploadUrl", "{}", "GET /person/quiblets/upload-url?mimeType=image%2Fjpeg", "", "{}"},
    {"upload.askInstantQuibletUploadUrl", "{}", "GET /content/quiblets/upload-url?mimeType=image%2Fjpeg", "", "{}"},
    {"upload.uploadFile", R"({"file":"DIR/back.jpg","with":"$"})",
     "PUT storage.zolvi.example/zolvi-photos-dev/Photos/alice/instant/*", "bytes", ""},
    {"profile.updateProfilePicture", R"({"data":"@DIR/back.jpg","name":"me.jpg"})", "PUT /person/me/profile-picture",
     "form", R"({"id":"alice","profilePicture":{}})"},

    {"relationships.fetchFriends", "{}", "GET /relationships/friends/", "", R"({"data":[{"id":"bob"}]})"},
    {"relationships.fetchFriends", R"({"cursor":"end"})", "GET /relationships/friends/?page=", "", R"({"data":[]})"},
    {"relationships.fetchSuggestions", "{}", "GET /relationships/suggestions/", "", R"({"data":[{"id":"dave"}]})"},
    {"relationships.sendFriendRequest", R"({"id":"dave","source":"friendsOfFriendsFeed"})",
     "POST /relationships/friend-requests/", R"({"userId":"dave","source":"friendsOfFriendsFeed"})",
     R"({"id":"dave","status":"sent"})"},
    {"relationships.fetchFriendsRequestSent", "{}", "GET /relationships/friend-requests/sent", "",
     R"({"data":[{"id":"dave"}]})"},
    {"relationships.cancelFriendRequest", R"({"id":"dave"})", "PATCH /relationships/friend-requests/dave",
     R"({"status":"canceled"})", R"({"id":"dave"})"},
    {"relationships.fetchFriendsRequestReceived", R"({"cursor":"start"})",
     "GET /relationships/friend-requests/received?page", "", R"({"data":[{"id":"nora"},{"id":"omar"}]})"},
    {"relationships.acceptFriendRequest", R"({"id":"nora"})", "PATCH /relationships/friend-requests/nora",
     R"({"status":"accepted"})", R"({"id":"nora","status":"accepted"})"},
    {"relationships.rejectFriendRequest", R"({"id":"omar"})", "PATCH /relationships/friend-requests/omar",
     R"({"status":"rejected"})", R"({"id":"omar"})"},
    {"relationships.hideSuggestion", R"({"id":"dave"})", "DELETE /relationships/suggestions/dave", "", ""},
    {"relationships.retrieveExistingContacts", R"({"phoneNumbers":[]})", "POST /relationships/contacts",
     R"({"phoneNumbers":[]})", "[]"},
    {"relationships.retrieveExistingContacts", R"({"phoneNumbers":["+33639980102","+1"]})",
     "POST /relationships/contacts", R"({"phoneNumbers":["+33639980102","+1"]})", R"([{"id":"bob"}])"},
    {"relationships.removeFriend", R"({"id":"carol"})", "DELETE /relationships/friends/carol", "", ""},
    {"person.fetch", R"({"userId":"bob"})", "GET /person/profiles/bob", "", R"({"id":"bob"})"},
    {"person.fetch", R"({"username":"dave.d"})", "GET /person/profiles/username/dave.d", "", R"({"id":"dave"})"},
    {"person.fetchMutualFriends", R"({"userId":"dave"})", "GET /relationships/friends/common/dave", "",
     R"({"data":[{"id":"bob"}]})"},
    {"search.searchPersons", R"({"query":"BELL &","limit":5})", "GET /search/profile?query=BELL%20%26&limit=5", "",
     R"({"data":[]})"},
    {"search.searchPersons", R"({"query":"bell","limit":5})", "GET /search/profile?query=bell&limit=5", "",
     R"({"data":[{"id":"bob"}]})"},

    {"profile.fetch", "{}", "GET /person/me", "", R"({"id":"alice"})"},
    {"profile.update", R"({"infos":{"biography":"Ça va ☕"}})", "PATCH /person/me", R"({"biography":"Ça va ☕"})",
     R"({"biography":"Ça va ☕"})"},
    {"profile.updateUsername", R"({"username":"alice2"})", "PATCH /person/me/username", R"({"username":"alice2"})",
     R"({"username":"alice2"})"},
    {"profile.updateUsername", R"({"username":null})", "PATCH /person/me/username", R"({"username":null})", "{}"},
    {"profile.updateRegion", R"({"region":"us-central"})", "PATCH /person/me/region", R"({"region":"us-central"})",
     R"({"region":"us-central"})"},
    {"profile.updateQuiblet", R"({"quiblet":{"emoji":"😍","media":{"bucket":"b","path":"p.jpg","width":5,"height":6}}})",
     "PUT /person/me/quiblets", R"({"emoji":"😍","media":{"bucket":"b","path":"p.jpg","width":5,"height":6}})", "{}"},
    {"profile.deleteQuiblet", R"({"quiblet":"😍"})", "DELETE /person/me/quiblets", R"({"emoji":"😍"})", "{}"},
    {"profile.deleteProfilePicture", "{}", "DELETE /person/me/profile-picture", "", R"({"id":"alice"})"},
    {"profile.deleteAccount", "{}", "DELETE /person/me", "", R"({"id":"alice"})"},
    {"profile.cancelAccountDeletion", "{}", "PATCH /person/me/cancel-delete", "", R"({"id":"alice"})"},
    {"regions.fetch", "{}", "GET /zolvi/regions", "", R"([{}])"},
    {"regions.fetch", R"({"language":"fr"})", "GET /zolvi/regions?language=fr", "", R"([{}])"},
    {"settings.fetch", "{}", "GET /settings", "", "{}"},
    {"settings.updatePush",
     R"({"settings":{"late":true,"comment":false,"mention":true,"friendRequest":false,"quiblet":true}})",
     "PUT /settings/notification-push",
     R"({"late":true,"comment":false,"mention":true,"friendRequest":false,"quiblet":true})", R"({"comment":false})"},
    {"settings.fetchPush", "{}", "GET /settings/notification-push", "", R"({"late":true,"comment":false})"},
    {"terms.update", R"({"code":"show-friends-to-friends","with":"DECLINED"})", "PUT /terms/show-friends-to-friends",
     R"({"status":"DECLINED"})", R"({"code":"show-friends-to-friends","status":"DECLINED"})"},
    {"terms.fetch", "{}", "GET /terms", "", R"({"data":[{}]})"},

    {"content.createMyPost",
     R"({"post":{"takenAt":"2023-11-14T22:10:00.345Z","backCamera":{"bucket":"b","path":"back.jpg","width":1500,
         "height":2000},"frontCamera":{"bucket":"b","path":"front.jpg","width":3,"height":4},"isLate":false,
         "visibility":["friends-of-friends"],"retakeCounter":2}})",
     "POST /content/posts",
     R"({"takenAt":"2023-11-14T22:10:00.345Z","backCamera":{"bucket":"b","path":"back.jpg","width":1500,
         "height":2000},"frontCamera":{"bucket":"b","path":"front.jpg","width":3,"height":4},"isLate":false,
         "visibility":["friends-of-friends"],"retakeCounter":2})",
     R"({"user":{"id":"alice"},"takenAt":"2023-11-14T22:10:00.345Z","primary":{"width":1500}})"},
    {"content.post", R"({"for":"post-bob"})", "GET /content/posts/post-bob", "", R"({"id":"post-bob"})"},
    {"content.updateCaption", R"({"caption":"\"Cof\\fee\" ☕\n"})", "PATCH /content/posts/caption",
     R"({"caption":"\"Cof\\fee\" ☕\n"})", R"({"caption":"\"Cof\\fee\" ☕\n"})"},
    {"content.updateVisibility", R"({"visibility":"public"})", "PATCH /content/posts/visibility",
     R"({"visibility":"public"})", R"({"visibility":["public"]})"},
    {"content.notifyScreenshot", R"({"forPostId":"post-bob","by":"bob"})",
     "POST /content/screenshots?postId=post-bob&postUserId=bob", "", R"({"screenshots":{"total":1}})"},
    {"content.addComment", R"({"comment":"hi","on":"post-bob","by":"bob"})",
     "POST /content/comments?postId=post-bob&postUserId=bob", R"({"content":"hi"})", R"({"user":{"id":"alice"}})"},
    {"content.deleteComments", R"({"commentIds":["c/1"],"on":"post-bob","by":"bob"})",
     "DELETE /content/comments?postId=post-bob&postUserId=bob", R"({"commentIds":["c/1"]})", "404"},
    {"content.addEmoji", R"({"emoji":"😍","on":"post-bob","by":"bob"})",
     "PUT /content/quiblets?postId=post-bob&postUserId=bob", R"({"emoji":"😍"})", R"({"isInstant":false})"},
    {"content.addInstant",
     R"({"instant":{"media":{"bucket":"b","path":"s.jpg","width":5,"height":6}},"on":"post-bob","by":"bob"})",
     "PUT /content/quiblets/instant?postId=post-bob&postUserId=bob",
     R"({"media":{"bucket":"b","path":"s.jpg","width":5,"height":6}})", R"({"isInstant":true,"media":{"height":6}})"},
    {"content.deleteQuiblets", R"({"quibletIds":[],"from":"post-bob","by":"bob"})",
     "DELETE /content/quiblets?postId=post-bob&postUserId=bob", R"({"quibletIds":[]})", ""},
    {"content.deleteMyPost", "{}", "DELETE /content/posts", "", ""},

    {"moderationReport.reportProfile", R"({"userID":"bob","reason":"spam"})", "POST /moderation/reports/profile",
     R"({"userId":"bob","reason":"spam"})", ""},
    {"moderationReport.reportPost", R"({"postID":"post-bob","reason":"scam-or-untrue","comment":"No."})",
     "POST /moderation/reports/post", R"({"postId":"post-bob","reason":"scam-or-untrue","comment":"No."})", ""},
    {"moderationBlock.blockUser", R"({"id":"bob"})", "POST /moderation/block-users", R"({"blockedUserId":"bob"})", ""},
    {"moderationBlock.fetchBlockedUsers", "{}", "GET /moderation/block-users", "", R"({"data":[{"userId":"bob"}]})"},
    {"moderationBlock.unblockUser", R"({"id":"bob"})", "DELETE /moderation/block-users/bob", "", ""},
    {"vonage.requestCode", R"({"for":"+33639980102"})", "POST auth-dev.zolvi.example/main/api/vonage/request-code",
     R"({"deviceId":"device-1","phoneNumber":"+33639980102"})", R"({"status":"0"})"},
    {"vonage.checkCode", R"({"for":"none","and":"123456"})", "POST auth-dev.zolvi.example/main/api/vonage/check-code",
     R"({"vonageRequestId":"none","code":"123456"})", R"({"status":"3"})"},
    {"analytics.send", R"({"events":[{"b":[1,null,{"x":0.5}],"a":"é"},{}]})", "POST /analytics/events",
     R"({"events":[{"b":[1,null,{"x":0.5}],"a":"é"},{}]})", ""},
};

/// Method and path below the API's base; on another server, with its host in full.
std::string text(const EmulatorRequest& request) {
  constexpr std::string_view api = "mobile-dev.zolvi.example/main/api";
  const std::string place = request.host + request.target;
  return request.method + " " + (place.starts_with(api) ? place.substr(api.size()) : place);
}

/// The media type that the body must have.
std::string typeOf(std::string_view body) {
  if (body == "bytes") return "image/jpeg";
  return body == "form" ? "multipart/form-data; boundary=*" : "application/json";
}

bool fits(std::string_view text, std::string_view pattern) {
  return pattern.ends_with('*') ? text.starts_with(pattern.substr(0, pattern.size() - 1)) : text == pattern;
}

void checkBody(const EmulatorRequest& request, std::string_view expected) {
  const std::string* const type = request.header("Content-Type");
  ASSERT_EQ(type != nullptr, !expected.empty());
  if (type) {
    EXPECT_TRUE(fits(*type, typeOf(expected))) << *type;
  }
  if (expected.starts_with('{')) {
    EXPECT_EQ(json::parse(request.body), json::parse(expected));
  } else {
    EXPECT_EQ(request.body.empty(), expected.empty());
  }
}

void drive(Kit& kit, std::span<const Row> rows) {
  for (const Row& row : rows) {
    SCOPED_TRACE(std::string(row.operation) + row.arguments);
    kit.perform(row.operation, row.arguments, row.result);
    std::vector<EmulatorRequest> requests = kit.requests();
    std::erase_if(requests, [](const auto& request) { return request.target.find("/token?") != std::string::npos; });
    ASSERT_EQ(requests.size(), *row.request == '\0' ? 0u : 1u);
    if (requests.empty()) continue;
    EXPECT_TRUE(fits(text(requests[0]), row.request)) << text(requests[0]);
    checkBody(requests[0], row.body);
  }
}

TEST(KitOperations, BecomeTheRequestsThatTheBackEndServesAndDecodeItsAnswers) {
  Kit kit;
  kit.actAs("zoe");
  drive(kit, newcomersRows);
  kit.actAs("alice");
  drive(kit, alicesRows);
}

TEST(KitOperations, AreAllInTheCatalogueAndTried) {
  // The groups' public headers are what there is.
  std::multiset<std::string> declared;
  const std::regex operation(R"((?:boost::asio::awaitable<[^;(]*>|std::optional<\w+>|void)\s+(\w+)\()");
  for (const auto& file : std::filesystem::directory_iterator(ZVAPIKIT_SOURCE_DIR "/include/zvapikit/domains")) {
    std::ifstream stream(file.path());
    const std::string header{std::istreambuf_iterator<char>(stream), {}};
    std::string group = file.path().stem().string();
    group.resize(group.size() - std::string_view("Domain").size());
    group[0] = static_cast<char>(std::tolower(group[0]));
    for (std::sregex_iterator found(header.begin(), header.end(), operation), end; found != end; ++found) {
      declared.insert(group + "." + found->str(1));
    }
  }
  std::multiset<std::string> catalogued;
  for (const zvkit::Operation& known : zvkit::catalogue()) catalogued.insert(known.fullName());
  EXPECT_EQ(catalogued, declared);

  std::set<const zvkit::Operation*> tried;
  const auto count = [&](const Row& row) { tried.insert(&zvkit::find(row.operation, json::parse(row.arguments))); };
  std::for_each(std::begin(newcomersRows), std::end(newcomersRows), count);
  std::for_each(std::begin(alicesRows), std::end(alicesRows), count);
  EXPECT_EQ(tried.size(), catalogued.size());
}

}  // namespace
}  // namespace ZAK::Tests
