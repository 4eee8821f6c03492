#include "RawClient.hpp"

#include <zvapikit/emulator/EmulatorThread.hpp>

#include <boost/asio/io_context.hpp>
#include <boost/asio/ssl/error.hpp>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <filesystem>

namespace ZAK::Test {
namespace {

using nlohmann::json;
using namespace std::chrono_literals;

constexpr const char* sandboxAuth = "auth-dev.zolvi.example";
constexpr const char* sandboxMobile = "mobile-dev.zolvi.example";
constexpr const char* sandboxSecret = "D8B13E62-0F4A-47C9-8E15-B93A6C2D7F40";

json firebaseBody(const std::string& token) {
  return {{"grant_type", "firebase"}, {"client_id", "ios"}, {"client_secret", sandboxSecret}, {"token", token}};
}

json refreshBody(const std::string& token) {
  return {{"grant_type", "refresh_token"},
          {"client_id", "ios"},
          {"client_secret", sandboxSecret},
          {"refresh_token", token}};
}

json picture(const std::string& path) {
  return {{"bucket", "zolvi-photos-dev"}, {"path", path}, {"width", 1500}, {"height", 2000}};
}

json postBody() {
  return {{"takenAt", "2023-04-05T17:09:12.345Z"},
          {"backCamera", picture("Photos/a b.jpg")},
          {"frontCamera", picture("Photos/front.jpg")},
          {"isLate", false},
          {"visibility", {"friends"}},
          {"retakeCounter", 2}};
}

class EmulatorTest : public testing::Test {
 protected:
  /// An emulator whose clock the test moves, from 2023-04-05T17:10:00Z on.
  EmulatorOptions options() {
    EmulatorOptions result;
    result.now = [this] { return Date(std::chrono::microseconds(now_.load())); };
    return result;
  }
  void advance(std::chrono::microseconds by) { now_ += by.count(); }

  RawClient::Answer token(const json& body) {
    RawClient client(*emulator_, sandboxAuth);
    return client.send("POST", "/main/token?grant_type=" + body.at("grant_type").get<std::string>(), body);
  }
  RawClient signedIn(const std::string& user) {
    return RawClient(*emulator_, sandboxMobile, token(firebaseBody("firebase-" + user)).json().at("access_token"));
  }

  std::atomic<std::int64_t> now_ = 1'680'714'600'000'000;
  EmulatorThread emulator_{options()};
};

TEST_F(EmulatorTest, ProvesItselfForEveryHostAndNoOther) {
  for (const char* host : {"mobile.zolvi.example", sandboxMobile, "auth.zolvi.example", sandboxAuth,
                           "storage.zolvi.example", "localhost", "127.0.0.1"}) {
    EXPECT_NO_THROW(RawClient(*emulator_, host)) << host;
  }
  EXPECT_THROW(RawClient(*emulator_, "elsewhere.example"), boost::system::system_error);
  EXPECT_EQ(RawClient(*emulator_, "localhost").send("GET", "/").status, 421);
  EXPECT_EQ(RawClient(*emulator_, sandboxMobile).send("GET", "/main/apis/content").status, 421) << "not below the base";
}

TEST(EmulatorCertificate, ChoosesItsFault) {
  for (const auto kind : {EmulatorOptions::Certificate::expired, EmulatorOptions::Certificate::wrongHost}) {
    EmulatorThread emulator({.certificate = kind});
    EXPECT_THROW(RawClient(*emulator, sandboxMobile), boost::system::system_error);
  }
}

TEST(EmulatorLifetime, StopEndsItsWorkWithAConnectionOpenAndAnAnswerDelayed) {
  std::filesystem::path caFile;
  {
    EmulatorThread emulator;
    caFile = emulator->caFile();
    namespace fs = std::filesystem;
    EXPECT_EQ(fs::status(caFile).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(fs::status(caFile.parent_path()).permissions(), fs::perms::owner_all);
    emulator->inject({.delay = 1h});
    RawClient idle(*emulator, sandboxMobile);
    RawClient waiting(*emulator, sandboxMobile);
    std::thread stopper([&] {
      while (emulator->counts().faults == 0) std::this_thread::yield();
      emulator->stop();
    });
    EXPECT_THROW(waiting.send("GET", "/main/api/x"), boost::system::system_error);
    stopper.join();
    EXPECT_THROW(idle.send("GET", "/main/api/x"), boost::system::system_error);
    EXPECT_THROW(RawClient(*emulator, sandboxMobile), boost::system::system_error);
  }  // joins the thread, so its context has run dry
  EXPECT_FALSE(std::filesystem::exists(caFile.parent_path()));
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

TEST(EmulatorThreads, ServeConcurrentClientsOneAtATime) {
  boost::asio::io_context context;
  const auto emulator = Emulator::start(context.get_executor());
  std::vector<std::thread> runners;
  for (int i = 0; i < 3; ++i) runners.emplace_back([&] { context.run(); });
  std::atomic<int> created = 0;
  std::atomic<int> refused = 0;
  std::vector<std::thread> clients;
  for (int i = 0; i < 8; ++i) {
    clients.emplace_back([&] {
      RawClient auth(*emulator, sandboxAuth);
      const json issued = auth.send("POST", "/main/token?grant_type=firebase", firebaseBody("firebase-alice")).json();
      RawClient client(*emulator, sandboxMobile, issued.at("access_token"));
      const auto answer = client.send("POST", "/main/api/content/posts", postBody());
      if (answer.status == 201) ++created;
      if (answer.status == 409) ++refused;
    });
  }
  for (std::thread& thread : clients) thread.join();
  emulator->stop();
  for (std::thread& thread : runners) thread.join();
  EXPECT_EQ(created, 1);
  EXPECT_EQ(refused, 7);
}

TEST_F(EmulatorTest, ChecksTokenRequestsFieldByField) {
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
  RawClient client(*emulator_, sandboxAuth);
  for (const Case& test : cases) {
    json body = firebaseBody("firebase-alice");
    body.merge_patch(test.change);
    EXPECT_EQ(client.send("POST", std::string("/main/token?grant_type=") + test.query, body).status, test.status)
        << test.what;
  }
  const std::string good = firebaseBody("firebase-alice").dump();
  EXPECT_EQ(client.sendText("POST", "/main/token?grant_type=firebase", good, "text/plain").status, 415);
  EXPECT_EQ(client.send("POST", "/main/token", firebaseBody("firebase-alice")).status, 400);
  EXPECT_EQ(client.send("POST", "/token?grant_type=firebase", firebaseBody("firebase-alice")).status, 421);
  emulator_->addFirebaseToken("eyJ.custom", "bob");
  EXPECT_EQ(token(firebaseBody("eyJ.custom")).status, 201);
}

TEST_F(EmulatorTest, RotatesRefreshTokens) {
  const json first = token(firebaseBody("firebase-alice")).json();
  const auto second = token(refreshBody(first.at("refresh_token")));
  ASSERT_EQ(second.status, 201);
  EXPECT_NE(second.json().at("access_token"), first.at("access_token"));
  EXPECT_EQ(token(refreshBody(first.at("refresh_token"))).status, 400);
  EXPECT_EQ(token(refreshBody(second.json().at("refresh_token"))).status, 201);
}

TEST_F(EmulatorTest, RejectsTokensThatExpiredOrWereWithdrawn) {
  json issued = token(firebaseBody("firebase-alice")).json();
  EXPECT_EQ(issued.at("expires_in"), 3600);
  RawClient client(*emulator_, sandboxMobile);
  const auto status = [&] { return client.send("GET", "/main/api/content/posts/post-bob").status; };
  EXPECT_EQ(status(), 401) << "no token";
  client.authorize(issued.at("access_token"));
  EXPECT_EQ(status(), 200);
  advance(3599s);
  EXPECT_EQ(status(), 200);
  advance(1s);
  const auto rejected = client.send("GET", "/main/api/content/posts/post-bob");
  EXPECT_EQ(rejected.status, 401);
  EXPECT_EQ(rejected.json().at("statusCode"), 401);
  EXPECT_EQ(rejected.errorKey(), "");

  issued = token(refreshBody(issued.at("refresh_token"))).json();
  client.authorize(issued.at("access_token"));
  emulator_->expireTokens();
  EXPECT_EQ(status(), 401);
  issued = token(refreshBody(issued.at("refresh_token"))).json();
  client.authorize(issued.at("access_token"));
  EXPECT_EQ(status(), 200);
  RawClient production(*emulator_, "mobile.zolvi.example");
  production.authorize(issued.at("access_token"));
  EXPECT_EQ(production.send("GET", "/api/content/posts/post-bob").status, 401) << "the other environment's token";
  emulator_->revokeTokens();
  EXPECT_EQ(status(), 401);
  EXPECT_EQ(token(refreshBody(issued.at("refresh_token"))).status, 400);
}

TEST_F(EmulatorTest, LetsAUserPostOnceAMoment) {
  RawClient alice = signedIn("alice");
  const auto created = alice.send("POST", "/main/api/content/posts", postBody());
  ASSERT_EQ(created.status, 201) << created.body;
  const json post = created.json();
  EXPECT_EQ(post.at("primary").at("url"), "https://storage.zolvi.example/zolvi-photos-dev/Photos/a%20b.jpg");
  EXPECT_EQ(post.at("takenAt"), "2023-04-05T17:09:12.345Z");
  EXPECT_EQ(post.at("createdAt"), "2023-04-05T17:10:00.000Z");
  EXPECT_EQ(alice.send("POST", "/main/api/content/posts", postBody()).errorKey(), "user-already-posted");

  const auto upgraded = alice.send("PATCH", "/main/api/content/posts/visibility", {{"visibility", "public"}});
  EXPECT_EQ(upgraded.json().at("visibility"), json::array({"public"}));
  EXPECT_EQ(alice.send("PATCH", "/main/api/content/posts/visibility", {{"visibility", "friends"}}).status, 200);
  const auto tooOften = alice.send("PATCH", "/main/api/content/posts/visibility", {{"visibility", "public"}});
  EXPECT_EQ(tooOften.errorKey(), "too-many-visibility-upgrades");

  EXPECT_EQ(alice.send("DELETE", "/main/api/content/posts").body, "{}");
  EXPECT_EQ(alice.send("DELETE", "/main/api/content/posts").status, 404);
  EXPECT_EQ(alice.send("POST", "/main/api/content/posts", postBody()).status, 201);
  EXPECT_EQ(alice.send("DELETE", "/main/api/content/posts").errorKey(), "too-many-deletions");

  advance(24h);
  RawClient tomorrow = signedIn("alice");
  EXPECT_EQ(tomorrow.send("PATCH", "/main/api/content/posts/caption", {{"caption", "x"}}).errorKey(), "old-post");
  EXPECT_EQ(tomorrow.send("POST", "/main/api/content/posts", postBody()).status, 201);
  EXPECT_EQ(tomorrow.send("PATCH", "/main/api/content/posts/caption", {{"caption", ""}}).json().at("caption"), "");
}

TEST_F(EmulatorTest, RefusesPostsThatAreNotInForm) {
  const json changes[] = {
      {{"takenAt", "2023-04-05T17:09:12Z"}},
      {{"takenAt", "2023-02-30T17:09:12.000Z"}},
      {{"isLate", 0}},
      {{"visibility", json::array()}},
      {{"visibility", {"unknown"}}},
      {{"visibility", "friends"}},
      {{"retakeCounter", 1.5}},
      {{"retakeCounter", nullptr}},
      {{"backCamera", {{"width", 0}}}},
      {{"backCamera", {{"mimeType", "image/jpeg"}}}},
      {{"location", {{"latitude", 91}, {"longitude", 0}}}},
      {{"location", {{"latitude", 1}}}},
      {{"caption", "x"}},
  };
  RawClient alice = signedIn("alice");
  for (const json& change : changes) {
    json body = postBody();
    body.merge_patch(change);
    EXPECT_EQ(alice.send("POST", "/main/api/content/posts", body).status, 400) << change;
  }
  json withNull = postBody();
  withNull["location"] = nullptr;
  EXPECT_EQ(alice.send("POST", "/main/api/content/posts", withNull).status, 400);
  withNull["location"] = {{"latitude", 48.85}, {"longitude", 2.35}};
  EXPECT_EQ(alice.send("POST", "/main/api/content/posts", withNull).json().at("location").at("latitude"), 48.85);
}

TEST_F(EmulatorTest, TakesReactionsToPostsThatTheReaderMaySee) {
  RawClient alice = signedIn("alice");
  RawClient bob = signedIn("bob");
  const std::string query = "?postId=post-bob&postUserId=bob";
  const std::string comments = "/main/api/content/comments" + query;
  const std::string quiblets = "/main/api/content/quiblets" + query;

  std::string first;
  for (int i = 0; i < 7; ++i) {
    const json comment = alice.send("POST", comments, {{"content", "c" + std::to_string(i)}}).json();
    EXPECT_EQ(comment.at("user").at("username"), "alice");
    if (i == 0) first = comment.at("id");
  }
  const json own = bob.send("POST", comments, {{"content", "mine"}}).json();
  EXPECT_EQ(alice.send("DELETE", comments, {{"commentIds", {own.at("id")}}}).status, 404) << "another's comment";
  EXPECT_EQ(alice.send("DELETE", comments, {{"commentIds", json::array()}}).status, 200);
  EXPECT_EQ(bob.send("DELETE", comments, {{"commentIds", {first}}}).status, 200) << "a comment on one's own post";

  EXPECT_EQ(alice.send("PUT", quiblets, {{"emoji", "😍"}}).status, 200);
  const json again = alice.send("PUT", quiblets, {{"emoji", "😍"}}).json();
  const std::string instants = "/main/api/content/quiblets/instant" + query;
  EXPECT_TRUE(alice.send("PUT", instants, {{"media", picture("i.jpg")}}).json().at("isInstant"));

  const json post = alice.send("POST", "/main/api/content/screenshots" + query).json();
  EXPECT_EQ(post.at("user").at("status"), "accepted");
  EXPECT_EQ(post.at("comments").at("total"), 7);
  EXPECT_EQ(post.at("comments").at("sample").size(), 5);
  EXPECT_EQ(post.at("comments").at("sample").back().at("content"), "mine");
  EXPECT_EQ(post.at("quiblets").at("total"), 2) << "the same emoji again replaces the first";
  EXPECT_EQ(post.at("screenshots").at("sample").at(0).at("user").at("id"), "alice");
  EXPECT_EQ(alice.send("DELETE", quiblets, {{"quibletIds", {again.at("id")}}}).status, 200);
  EXPECT_EQ(alice.send("DELETE", quiblets, {{"quibletIds", {again.at("id")}}}).status, 404);

  EXPECT_EQ(
      alice.send("POST", "/main/api/content/comments?postId=post-bob&postUserId=carol", {{"content", "x"}}).status,
      404);
  EXPECT_EQ(alice.send("POST", "/main/api/content/comments?postId=post-bob", {{"content", "x"}}).status, 400);
  EXPECT_EQ(alice.send("GET", "/main/api/content/posts/post-dave").json(), json({{"id", "post-dave"}}));
  EXPECT_EQ(signedIn("eve").send("GET", "/main/api/content/posts/post-bob").status, 404) << "a stranger";
  EXPECT_EQ(alice.send("GET", "/main/api/content/posts/post-none").json().at("error"), "Not Found");
}

}  // namespace
}  // namespace ZAK::Test
