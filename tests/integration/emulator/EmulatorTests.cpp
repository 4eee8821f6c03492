#include "RawClient.hpp"

#include <filesystem>
#include <thread>

namespace ZAK::Tests {
namespace {

using nlohmann::json;
using namespace std::chrono_literals;

TEST(EmulatorLifetime, ProvesItselfForEveryHostAndNoOther) {
  EmulatorThread emulator;
  for (const char* host : {"mobile.zolvi.example", sandboxMobile, "auth.zolvi.example", sandboxAuth,
                           "storage.zolvi.example", "localhost", "127.0.0.1"}) {
    EXPECT_NO_THROW(RawClient(*emulator, host)) << host;
  }
  EXPECT_THROW(RawClient(*emulator, "elsewhere.example"), boost::system::system_error);
  EXPECT_EQ(RawClient(*emulator, "localhost").send("GET /").status, 421);
  EXPECT_EQ(RawClient(*emulator, sandboxMobile).send("GET /main/apis/content").status, 421) << "not below the base";
  for (const auto flaw : {EmulatorOptions::Certificate::expired, EmulatorOptions::Certificate::wrongHost}) {
    EmulatorThread flawed({.certificate = flaw});
    EXPECT_THROW(RawClient(*flawed, sandboxMobile), boost::system::system_error);
  }
}

TEST(EmulatorLifetime, StopEndsItsWorkWithAConnectionOpenAndAnAnswerDelayed) {
  namespace fs = std::filesystem;
  fs::path caFile;
  {
    EmulatorThread emulator;
    caFile = emulator->caFile();
    EXPECT_EQ(fs::status(caFile).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(fs::status(caFile.parent_path()).permissions(), fs::perms::owner_all);
    emulator->inject({.delay = 1h});
    RawClient idle(*emulator, sandboxMobile);
    RawClient waiting(*emulator, sandboxMobile);
    std::thread stopper([&] {
      while (emulator->counts().faults == 0) std::this_thread::yield();
      emulator->stop();
    });
    EXPECT_THROW(waiting.send("GET /main/api/x"), boost::system::system_error);
    stopper.join();
    EXPECT_THROW(idle.send("GET /main/api/x"), boost::system::system_error);
    EXPECT_THROW(RawClient(*emulator, sandboxMobile), boost::system::system_error);
  }  // joins the thread, so its context has run dry
  EXPECT_FALSE(fs::exists(caFile.parent_path()));
}

TEST(EmulatorLifetime, LeavesNothingBehindInAContextThatStopsRunning) {
  boost::asio::io_context context;
  auto emulator = Emulator::start(context.get_executor());
  boost::asio::ip::tcp::socket client(context);
  client.connect({boost::asio::ip::address_v4::loopback(), static_cast<std::uint16_t>(emulator->port())});
  while (emulator->counts().connections == 0) context.run_one();
  context.poll();
  emulator.reset();
}

TEST(EmulatorLifetime, ServesConcurrentClientsOneAtATime) {
  boost::asio::io_context context;
  const auto emulator = Emulator::start(context.get_executor());
  std::vector<std::thread> runners;
  for (int i = 0; i < 3; ++i) runners.emplace_back([&] { context.run(); });
  std::atomic<int> created = 0;
  std::atomic<int> refused = 0;
  std::vector<std::thread> clients;
  for (int i = 0; i < 8; ++i) {
    clients.emplace_back([&] {
      RawClient alice(*emulator, sandboxMobile, signIn(*emulator, "alice"));
      const int status = alice.send("POST /main/api/content/posts", post).status;
      created += status == 201;
      refused += status == 409;
    });
  }
  for (std::thread& thread : clients) thread.join();
  emulator->stop();
  for (std::thread& thread : runners) thread.join();
  EXPECT_EQ(created, 1);
  EXPECT_EQ(refused, 7);
}

struct EmulatorTokens : EmulatorTest {
  EmulatorTokens() : EmulatorTest({}) {}

  RawClient::Answer ask(json change = json::object(), const std::string& query = "firebase") {
    json body = firebaseGrant("firebase-alice");
    body.merge_patch(change);
    return auth.send("POST /main/token?grant_type=" + query, body.dump());
  }
  RawClient::Answer refresh(const json& token) {
    return ask({{"grant_type", "refresh_token"}, {"token", nullptr}, {"refresh_token", token}}, "refresh_token");
  }
  RawClient auth{*emulator_, sandboxAuth};
};

TEST_F(EmulatorTokens, AreIssuedForRequestsInForm) {
  struct Case {
    const char* what;
    const char* query;
    json change;  // merged into a good request; null removes a key
    int status;
  };
  const Case cases[] = {
      {"good", "firebase", json::object(), 201},
      {"other grant in the query", "refresh_token", json::object(), 400},
      {"unknown grant", "password", {{"grant_type", "password"}}, 400},
      {"other client", "firebase", {{"client_id", "android"}}, 401},
      {"the other environment's secret", "firebase", {{"client_secret", "5E0A41C7-93D2-4F18-B6A5-7C2D9E3F1048"}}, 401},
      {"refresh token in a Firebase grant", "firebase", {{"refresh_token", "x"}}, 400},
      {"unknown key", "firebase", {{"scope", "x"}}, 400},
      {"no secret", "firebase", {{"client_secret", nullptr}}, 400},
      {"no Firebase token", "firebase", {{"token", nullptr}}, 401},
      {"unknown Firebase token", "firebase", {{"token", "x"}}, 401},
      {"refresh without its token", "refresh_token", {{"grant_type", "refresh_token"}, {"token", nullptr}}, 400},
  };
  for (const Case& test : cases) EXPECT_EQ(ask(test.change, test.query).status, test.status) << test.what;
  const std::string good = firebaseGrant("firebase-alice").dump();
  EXPECT_EQ(auth.send("POST /main/token?grant_type=firebase", good, "text/plain").status, 415);
  EXPECT_EQ(auth.send("POST /main/token", good).status, 400);
  EXPECT_EQ(auth.send("POST /token?grant_type=firebase", good).status, 421);
  emulator_->addFirebaseToken("eyJ.custom", "bob");
  EXPECT_EQ(ask({{"token", "eyJ.custom"}}).status, 201);
}

TEST_F(EmulatorTokens, AreRejectedOnceTheyExpiredOrWereWithdrawn) {
  json issued = ask().json();
  EXPECT_EQ(issued.at("expires_in"), 3600);
  RawClient client(*emulator_, sandboxMobile);
  const auto status = [&] { return client.send("GET /main/api/content/posts/post-bob").status; };
  EXPECT_EQ(status(), 401) << "no token";
  client.authorize(issued.at("access_token"));
  advance(3599s);
  EXPECT_EQ(status(), 200);
  advance(1s);
  EXPECT_EQ(status(), 401);

  const json spent = issued.at("refresh_token");
  issued = refresh(spent).json();
  EXPECT_EQ(refresh(spent).status, 400);
  client.authorize(issued.at("access_token"));
  EXPECT_EQ(status(), 200);
  RawClient production(*emulator_, "mobile.zolvi.example", issued.at("access_token"));
  EXPECT_EQ(production.send("GET /api/content/posts/post-bob").status, 401) << "the other environment's token";
  // What happens to the token happens before the request is served.
  emulator_->inject({.token = EmulatorFault::Token::expire});
  EXPECT_EQ(status(), 401);
  issued = refresh(issued.at("refresh_token")).json();
  client.authorize(issued.at("access_token"));
  EXPECT_EQ(status(), 200);
  emulator_->inject({.token = EmulatorFault::Token::revoke});
  EXPECT_EQ(status(), 401);
  EXPECT_EQ(refresh(issued.at("refresh_token")).status, 400);
}

TEST_F(EmulatorTest, LetsAUserPostOnceAMoment) {
  const std::string visibility = "PATCH /content/posts/visibility";
  const std::string caption = "PATCH /content/posts/caption";
  play({{"alice", "POST /content/posts", post,
         R"({"primary":{"url":"https://storage.zolvi.example/zolvi-photos-dev/Photos/a%20b.jpg"},
             "takenAt":"2023-04-05T17:09:12.345Z","createdAt":"2023-04-05T17:10:00.000Z"})"},
        {"alice", "POST /content/posts", post, "user-already-posted"},
        {"alice", visibility, R"({"visibility":"public"})", R"({"visibility":["public"]})"},
        {"alice", visibility, R"({"visibility":"friends"})", "200"},
        {"alice", visibility, R"({"visibility":"public"})", "too-many-visibility-upgrades"},
        {"alice", "DELETE /content/posts", "", "200"},
        {"alice", "DELETE /content/posts", "", "404"},
        {"alice", "POST /content/posts", post, "201"},
        {"alice", "DELETE /content/posts", "", "too-many-deletions"}});
  advance(24h);
  play({{"alice", caption, R"({"caption":"x"})", "old-post"},
        {"alice", "POST /content/posts", post, "201"},
        {"alice", caption, R"({"caption":""})", R"({"caption":""})"}});
}

TEST_F(EmulatorTest, RefusesPostsThatAreNotInForm) {
  for (const char* change :
       {R"({"isLate":0})", R"({"caption":"x"})", R"({"visibility":[]})", R"({"retakeCounter":1.5})",
        R"({"retakeCounter":null})", R"({"visibility":"friends"})", R"({"location":{"longitude":null}})",
        R"({"visibility":["unknown"]})", R"({"backCamera":{"width":0}})", R"({"takenAt":"2023-04-05T17:09:12Z"})",
        R"({"takenAt":"2023-02-30T17:09:12.000Z"})", R"({"backCamera":{"mimeType":"image/jpeg"}})",
        R"({"location":{"latitude":91,"longitude":0}})"}) {
    json body = json::parse(post);
    body.merge_patch(json::parse(change));
    play({{"alice", "POST /content/posts", body.dump(), "400"}});
  }
  json placeless = json::parse(post);
  placeless["location"] = nullptr;
  play({{"alice", "POST /content/posts", placeless.dump(), "400"},
        {"alice", "POST /content/posts", post, R"({"location":{"latitude":48.85,"longitude":2.35}})"}});
}

TEST_F(EmulatorTest, TakesReactionsToPostsThatTheReaderMaySee) {
  const std::string query = "?postId=post-bob&postUserId=bob";
  const std::string comments = "/content/comments" + query;
  const std::string quiblets = "/content/quiblets" + query;
  const auto idsOf = [](const char* key, const json& element) { return json{{key, {element.at("id")}}}.dump(); };
  const std::string first = idsOf("commentIds", send("alice", "POST " + comments, R"({"content":"c"})").json());
  for (int i = 0; i < 6; ++i) play({{"alice", "POST " + comments, R"({"content":"c"})", "201"}});
  const std::string own = idsOf("commentIds", send("bob", "POST " + comments, R"({"content":"mine"})").json());
  play({{"alice", "DELETE " + comments, own, "404"},  // another's comment
        {"alice", "DELETE " + comments, R"({"commentIds":[]})", "200"},
        {"bob", "DELETE " + comments, first, "200"},  // a comment on one's own post
        {"alice", "PUT " + quiblets, R"({"emoji":"😍"})", "200"}});
  const std::string again = idsOf("quibletIds", send("alice", "PUT " + quiblets, R"({"emoji":"😍"})").json());
  play({{"alice", "PUT /content/quiblets/instant" + query,
         R"({"media":{"bucket":"zolvi-photos-dev","path":"i.jpg","width":5,"height":6}})", R"({"isInstant":true})"},
        {"alice", "POST /content/screenshots" + query, "",
         R"({"user":{"status":"accepted"},"quiblets":{"total":2},"screenshots":{"sample":[{"user":{"id":"alice"}}]},
             "comments":{"total":7,"sample":[{},{},{},{},{"content":"mine"}]}})"},
        {"alice", "DELETE " + quiblets, again, "200"},
        {"alice", "DELETE " + quiblets, again, "404"},
        {"alice", "POST /content/comments?postId=post-bob&postUserId=carol", R"({"content":"x"})", "404"},
        {"alice", "POST /content/comments?postId=post-bob", R"({"content":"x"})", "400"},
        {"alice", "GET /content/posts/post-dave", "", R"({"id":"post-dave"})"},
        {"eve", "GET /content/posts/post-bob", "", "404"},
        {"alice", "GET /content/posts/post-none", "", R"({"error":"Not Found"})"}});
}

}  // namespace
}  // namespace ZAK::Tests
