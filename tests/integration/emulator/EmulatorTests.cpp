#include "integration/kit/Kit.hpp"

#include <filesystem>

namespace ZAK::Tests {
namespace {

using namespace std::chrono_literals;

/// One operation of a user's, as `Kit::perform` takes it.
struct Step {
  const char* user;
  const char* operation;
  const char* arguments;
  const char* expected;
};

void play(Kit& kit, std::initializer_list<Step> steps) {
  for (const Step& step : steps) {
    SCOPED_TRACE(std::string(step.user) + ": " + step.operation + step.arguments);
    if (kit.firebase->user != step.user) kit.actAs(step.user);
    kit.perform(step.operation, step.arguments, step.expected);
  }
}

constexpr const char* post = R"({"post":{"takenAt":"2023-11-14T22:10:00.345Z","isLate":false,"retakeCounter":2,
    "backCamera":{"bucket":"b","path":"back.jpg","width":1500,"height":2000},
    "frontCamera":{"bucket":"b","path":"front.jpg","width":3,"height":4},"visibility":["friends"]}})";

TEST(EmulatorStories, APostIsSeenByFriendsOnceAMomentAndBecomesAMemory) {
  Kit kit;
  play(kit, {{"alice", "content.createMyPost", post, R"({"user":{"id":"alice"}})"},
             {"alice", "content.createMyPost", post, R"("user-already-posted")"},
             {"bob", "feeds.fetchFriends", "{}", R"([{"user":{"id":"alice"}},{"user":{"id":"bob"}}])"},
             {"alice", "content.updateVisibility", R"({"visibility":"public"})", R"({"visibility":["public"]})"},
             {"alice", "content.updateVisibility", R"({"visibility":"friends"})", "{}"},
             {"alice", "content.updateVisibility", R"({"visibility":"public"})", R"("too-many-visibility-upgrades")"},
             {"alice", "content.deleteMyPost", "{}", ""},
             {"alice", "content.deleteMyPost", "{}", "404"},
             {"alice", "content.createMyPost", post, "{}"},
             {"alice", "content.deleteMyPost", "{}", R"("too-many-deletions")"}});
  kit.clock->advance(24h);
  play(kit, {{"alice", "content.updateCaption", R"({"caption":"x"})", R"("old-post")"},
             {"alice", "feeds.fetchFriends", "{}", "[]"},
             {"alice", "memories.fetchFirst", R"({"limit":1})", R"({"data":[{"memoryDay":"2023-11-14"}]})"},
             {"alice", "memories.deleteMemory", R"({"memoryId":"$/data/0/id"})", ""}});
}

TEST(EmulatorStories, ReactionsBelongToTheirAuthorAndToThePosts) {
  Kit kit;
  play(kit, {{"alice", "content.addComment", R"({"comment":"c","on":"post-bob","by":"bob"})", R"({"content":"c"})"},
             {"carol", "content.deleteComments", R"({"commentIds":["$/id"],"on":"post-bob","by":"bob"})", "404"},
             {"bob", "content.deleteComments", R"({"commentIds":["$/id"],"on":"post-bob","by":"bob"})", ""},
             {"alice", "content.addEmoji", R"({"emoji":"😍","on":"post-bob","by":"bob"})", "{}"},
             {"alice", "content.notifyScreenshot", R"({"forPostId":"post-bob","by":"bob"})",
              R"({"comments":{"total":0},"quiblets":{"total":1},"screenshots":{"total":1}})"},
             {"alice", "content.addComment", R"({"comment":"c","on":"post-bob","by":"carol"})", "404"},
             {"eve", "profile.create",
              R"({"infos":{"username":"eve","fullname":"Eve","birthdate":"1990-01-01T00:00:00.000Z"}})", "{}"},
             {"eve", "content.post", R"({"for":"post-bob"})", "404"}});
}

TEST(EmulatorStories, ANewcomerFindsAFriendWhosePostsOpen) {
  Kit kit;
  play(kit, {{"zoe", "profile.fetch", "{}", R"("check-user-exist")"},
             {"zoe", "profile.create",
              R"({"infos":{"username":"zoé","fullname":"Zoé","birthdate":"2012-01-01T00:00:00.000Z"}})",
              R"("missing-parental-consent")"},
             {"zoe", "profile.create",
              R"({"infos":{"username":"DAVE.D","fullname":"Zoé","birthdate":"2000-01-01T00:00:00.000Z"}})",
              R"("username-not-available")"},
             {"zoe", "profile.create",
              R"({"infos":{"username":"zoé","fullname":"Zoé","birthdate":"2012-01-01T00:00:00.000Z"},
                  "parentalConsentRequestId":"c1"})",
              R"({"id":"zoe"})"},
             {"zoe", "relationships.sendFriendRequest", R"({"id":"dave","source":"profile"})", R"({"status":"sent"})"},
             {"zoe", "relationships.acceptFriendRequest", R"({"id":"dave"})", "404"},
             {"zoe", "content.post", R"({"for":"post-dave"})", "404"},
             {"dave", "relationships.acceptFriendRequest", R"({"id":"zoe"})", R"({"status":"accepted"})"},
             {"zoe", "content.post", R"({"for":"post-dave"})", "{}"},
             {"dave", "person.fetch", R"({"username":"ZOé"})", R"({"relationship":{"status":"accepted"}})"},
             {"dave", "relationships.removeFriend", R"({"id":"zoe"})", ""},
             {"zoe", "relationships.fetchFriends", "{}", R"({"data":[]})"}});
}

TEST(EmulatorStories, FriendshipsHaveTheirLimitsAndBlocksEndThem) {
  Kit kit({.emulator = {.friendsPerUser = 6,  // as many as Bob has
                        .pendingRequestsSent = 3,
                        .pendingRequestsReceived = 2,
                        .pageSize = 2}});
  const char* const ask = "relationships.sendFriendRequest";
  play(kit,
       {{"alice", ask, R"({"id":"bob","source":"profile"})", "409"},
        {"alice", ask, R"({"id":"nora","source":"profile"})", "409"},  // who has asked Alice
        {"alice", ask, R"({"id":"dave","source":"profile"})", "{}"},
        {"alice", ask, R"({"id":"pia","source":"profile"})", "{}"},
        {"alice", ask, R"({"id":"rosa","source":"profile"})", R"("too-many-friend-requests-pending")"},
        {"pia", ask, R"({"id":"bob","source":"profile"})", R"("friend-has-too-many-friends")"},
        {"bob", "relationships.acceptFriendRequest", R"({"id":"ivan"})", R"("too-many-friends")"},
        {"rosa", ask, R"({"id":"alice","source":"profile"})", R"("friend-has-too-many-friend-requests-pending")"},
        {"bob", "relationships.fetchFriends", "{}", R"({"data":[{"id":"frida"},{"id":"gus"}]})"},
        {"alice", "relationships.fetchFriends", R"({"cursor":{"nextIndex":"$/next"}})", "400"},
        {"bob", "relationships.fetchFriends", R"({"cursor":{"nextIndex":"$/next"}})", R"({"data":[{"id":"jade"}]})"},
        {"bob", "relationships.fetchFriends", R"({"cursor":{"nextIndex":"$/next"}})", R"({"data":[{"id":"dave"}]})"},
        {"alice", "moderationBlock.blockUser", R"({"id":"bob"})", ""},
        {"alice", "content.post", R"({"for":"post-bob"})", "404"},
        {"bob", "person.fetch", R"({"userId":"alice"})", "404"},
        {"alice", "search.searchPersons", R"({"query":"bell","limit":5})", R"({"data":[]})"},
        {"alice", "moderationBlock.unblockUser", R"({"id":"bob"})", ""},
        {"alice", "relationships.removeFriend", R"({"id":"bob"})", "404"},  // they are friends no more
        {"alice", "search.searchPersons", R"({"query":"bell","limit":5})", R"({"data":[{"mutualFriends":1}]})"}});
}

TEST(EmulatorStories, APhoneSignsItsOwnerIn) {
  Kit kit;
  play(kit, {{"alice", "vonage.requestCode", R"({"for":"+33 6 39 98 01 01"})", R"({"status":"0"})"},
             {"alice", "vonage.checkCode", R"({"for":"$/vonageRequestId","and":"123456"})", R"({"uid":"alice"})"},
             {"alice", "vonage.requestCode", R"({"for":"+33639980102"})", R"({"status":"0"})"},
             {"alice", "vonage.checkCode", R"({"for":"$/vonageRequestId","and":"000000"})", R"({"status":"16"})"}});
}

TEST(EmulatorFaults, AreMetByTheCallsTheyAreMeantFor) {
  using Ending = EmulatorFault::Ending;
  const std::pair<EmulatorFault, const char*> cases[] = {
      {{.path = "/content/posts/{id}", .answer = EmulatorResponse{418}}, "httpError: HTTP 418"},
      {{.raw = "SSH-2.0-nonsense\r\n\r\n"}, "httpError: the answer is not HTTP"},
      {{.gzipBomb = 1000}, "missing key id"},
      {{.contentLengthError = 10, .ending = Ending::close}, "httpError: the answer was cut short"},
      {{.cutAfter = 30, .ending = Ending::drop}, "httpError: the answer was cut short"},
      {{.cutAfter = 30, .ending = Ending::reset}, "httpError: connection lost"},
  };
  for (const auto& [fault, outcome] : cases) {
    Kit kit;
    kit.signIn();
    const std::size_t id = kit.emulator->inject(fault);
    EXPECT_EQ(kit.outcomeOf(kit.reading()), outcome);
    EXPECT_EQ(kit.emulator->timesMet(id), 1u);
    EXPECT_EQ(kit.outcomeOf(kit.reading()), "ok") << "met once";
  }
  for (const auto flaw : {EmulatorOptions::Certificate::expired, EmulatorOptions::Certificate::wrongHost}) {
    Kit kit({.emulator = {.certificate = flaw}});
    EXPECT_NE(kit.outcomeOf(kit.reading()).find("certificate"), std::string::npos);
    EXPECT_EQ(kit.traffic(), Texts());
  }
}

TEST(EmulatorLifetime, StopEndsItsWorkWithAConnectionOpenAndAnAnswerDelayed) {
  std::filesystem::path caFile;
  {
    Kit kit;
    kit.signIn();
    caFile = kit.emulator->caFile();
    EXPECT_EQ(std::filesystem::status(caFile.parent_path()).permissions(), std::filesystem::perms::owner_all);
    kit.emulator->inject({.delay = 1h});
    kit.start(kit.reading());
    EXPECT_TRUE(kit.runner.runUntil([&] { return kit.emulator->counts().faults == 1; }));
    kit.emulator->stop();
    kit.finish();
    EXPECT_NE(std::exchange(*kit.outcomes, {}), Texts{"ok"});
    EXPECT_EQ(kit.outcomeOf(kit.reading()), "httpError: connection refused: mobile-dev.zolvi.example");
  }  // joins the thread, so its context has run dry
  EXPECT_FALSE(std::filesystem::exists(caFile.parent_path()));
}

}  // namespace
}  // namespace ZAK::Tests
