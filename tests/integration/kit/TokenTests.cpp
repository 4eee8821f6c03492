#include "Kit.hpp"

#include <zvapikit/core/EmptyDto.hpp>
#include <zvapikit/http/HTTPClient.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

namespace ZAK::Tests {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using testing::Contains;

constexpr const char* readUnsigned = "GET /content/posts/post-bob";
constexpr const char* readSigned = "GET /content/posts/post-bob signed";
constexpr seconds lifetime = std::chrono::hours(1);  // of the emulator's tokens

/// What a request says it is signed with.
std::string bearer(const EmulatorRequest& request) {
  const std::string* value = request.header("Authorization");
  return value ? value->substr(std::string("Bearer ").size()) : std::string();
}

EmulatorFault refreshFault() {
  EmulatorFault fault{.server = EmulatorServer::authentication, .times = EmulatorFault::always};
  fault.predicate = [](const EmulatorRequest& request) { return request.target.ends_with("=refresh_token"); };
  return fault;
}

std::string errorBody(int status, const std::string& key) {
  return R"({"error":"Refused","statusCode":)" + std::to_string(status) + R"(,"errorKey":")" + key + R"("})";
}

TEST(KitTokens, AreKeptPerEnvironmentUntilTheirLastMinute) {
  Kit kit;
  kit.signIn();
  const std::string first = kit.storedToken();
  kit.client = MobileApiClient::create(kit.context());
  kit.clock->advance(lifetime - seconds(61));
  EXPECT_EQ(kit.outcomeOf(kit.reading()), "ok");
  EXPECT_EQ(kit.traffic(), Texts{readSigned}) << "the app starts anew with the token of the keychain";

  Context production = kit.context();
  production.configuration.environment = Configuration::Environment::production;
  kit.client = MobileApiClient::create(std::move(production));
  EXPECT_EQ(kit.outcomeOf(kit.reading()), "ok");
  EXPECT_EQ(kit.traffic(), (Texts{"firebase", readSigned})) << "a token of the sandbox is none for production";
  EXPECT_EQ(kit.storedToken(), first);

  kit.client = MobileApiClient::create(kit.context());
  kit.clock->advance(seconds(2));
  EXPECT_EQ(kit.outcomeOf(kit.reading()), "ok");
  EXPECT_EQ(kit.traffic(), (Texts{"refresh", readSigned}));
  EXPECT_NE(kit.storedToken(), first);
}

TEST(KitTokens, AThousandCallsShareOneExchange) {
  constexpr std::size_t calls = 1000;
  Kit kit;
  kit.signIn();
  kit.clock->advance(lifetime);
  for (std::size_t i = 0; i < calls; ++i) kit.start(kit.reading());
  kit.finish();
  EXPECT_EQ(*kit.outcomes, Texts(calls, "ok"));
  const std::vector<EmulatorRequest> requests = kit.requests();
  ASSERT_EQ(requests.size(), calls + 1);
  EXPECT_TRUE(requests[0].target.ends_with("=refresh_token"));
  for (std::size_t i = 1; i <= calls; ++i) ASSERT_EQ(bearer(requests[i]), kit.storedToken());

  kit.emulator->revokeTokens();
  for (std::size_t i = 0; i < calls; ++i) kit.start(kit.reading());
  kit.finish();
  const Texts traffic = kit.traffic();
  EXPECT_EQ(std::count(traffic.begin(), traffic.end(), "firebase"), 1) << "a late rejection drops no newer token";
}

TEST(KitTokens, MendARefreshThatFails) {
  struct Case {
    const char* name;
    EmulatorFault fault;
    int sends;     ///< of the refresh
    bool refused;  ///< so that Firebase is asked at once
  };
  const auto answered = [](int status, std::string body = {}) {
    EmulatorFault fault = refreshFault();
    fault.answer = EmulatorResponse{status, std::move(body), {{"Location", "/main/token?grant_type=firebase"}}};
    return fault;
  };
  EmulatorFault reset = refreshFault();
  reset.cutAfter = 0;
  reset.ending = EmulatorFault::Ending::reset;
  for (const Case& c : {Case{"refused as spent", answered(400), 1, true}, Case{"refused", answered(401), 6, true},
                        Case{"refused otherwise", answered(499), 6, true}, Case{"redirected", answered(302), 6, false},
                        Case{"failed", answered(500), 6, false}, Case{"lost", reset, 1, false},
                        Case{"not a token", answered(201, "{}"), 1, false}, Case{"empty", answered(201), 1, false}}) {
    SCOPED_TRACE(c.name);
    Kit kit;
    kit.signIn();
    kit.client = MobileApiClient::create(kit.context());  // with connections of its own
    kit.clock->advance(lifetime);
    kit.emulator->inject(c.fault);
    EXPECT_EQ(kit.outcomeOf(kit.reading()), "ok");

    Texts expected(static_cast<std::size_t>(c.sends), "refresh");
    if (!c.refused) expected.push_back(readUnsigned);  // and is rejected, which starts the Firebase grant
    expected.insert(expected.end(), {"firebase", readSigned});
    EXPECT_EQ(kit.traffic(), expected);

    std::vector<milliseconds> waits = kit.clock->waits();
    if (!c.refused) {
      ASSERT_FALSE(waits.empty());
      EXPECT_EQ(waits.back(), milliseconds(100)) << "before the rejected request is sent again";
      waits.pop_back();
    }
    ASSERT_EQ(waits.size(), static_cast<std::size_t>(c.sends - 1));
    for (std::size_t i = 0; i < waits.size(); ++i) {
      EXPECT_GE(waits[i], seconds(1 << i) / 2) << i;
      EXPECT_LE(waits[i], seconds(1 << i)) << i;
    }
    const Texts lines = kit.logger->take();
    EXPECT_THAT(lines, Contains("message: [TokenManager] refreshing invalid token (expiry date 2023-11-14 23:12:20 "
                                "+0000 VS current date 2023-11-14 23:13:20 +0000)"));
    EXPECT_THAT(lines, Contains(c.refused ? "warning: [TokenManager] clientError when refreshing token"
                                          : "error: [TokenManager] retrieveValidToken error"));
  }
}

TEST(KitTokens, AreAskedForAnewWhenTheServerHasClosedTheIdleConnection) {
  Kit kit;
  kit.emulator->inject({.server = EmulatorServer::authentication, .ending = EmulatorFault::Ending::close});
  kit.signIn();
  kit.clock->advance(lifetime);
  std::this_thread::sleep_for(milliseconds(300));  // until the emulator has given up waiting for the client's farewell
  EXPECT_EQ(kit.outcomeOf(kit.reading()), "ok");
  EXPECT_EQ(kit.traffic(), (Texts{"refresh", readSigned}));
}

TEST(KitTokens, RejectionsAreMendedThreeSendsLong) {
  struct Case {
    EmulatorResponse answer;
    int times;
    bool mends;
    std::string outcome;
  };
  const int always = EmulatorFault::always;
  for (const Case& c :
       {Case{{401}, 1, true, "ok"}, Case{{401, errorBody(401, "unknown-key")}, 2, true, "ok"},
        Case{{403}, 2, true, "ok"}, Case{{401}, always, true, "httpError: HTTP 401 Unauthorized"},
        Case{{403, errorBody(403, "unknown-key")}, always, true, "apiError: Refused (403) : unknown-key"},
        Case{{403, errorBody(403, "too-many-friends")}, always, false, "apiError: Refused (403) : too-many-friends"},
        Case{{401, errorBody(401, "old-post")}, always, false, "apiError: Refused (401) : old-post"},
        Case{{404, errorBody(404, "unknown-key")}, always, false, "apiError: Refused (404) : unknown-key"},
        Case{{500}, always, false, "httpError: HTTP 500 Internal Server Error"}}) {
    SCOPED_TRACE(std::to_string(c.answer.status) + " " + c.answer.body + " " + std::to_string(c.times));
    Kit kit;
    kit.signIn();
    const std::string stored = kit.storedToken();
    kit.emulator->inject({.server = EmulatorServer::mobile, .times = c.times, .answer = c.answer});
    EXPECT_EQ(kit.outcomeOf(kit.reading()), c.outcome);
    const std::vector<EmulatorRequest> requests = kit.requests();
    const int rejections = c.mends ? std::min(c.times, 2) : 0;
    ASSERT_EQ(requests.size(), static_cast<std::size_t>(1 + 2 * rejections)) << "a sign-in and a send a rejection";
    for (std::size_t i = 2; i < requests.size(); i += 2) {
      EXPECT_TRUE(requests[i - 1].target.ends_with("=firebase"));
      EXPECT_NE(bearer(requests[i]), bearer(requests[i - 2])) << "signed with the new token";
    }
    EXPECT_EQ(kit.storedToken(), bearer(requests.back()));
    EXPECT_EQ(kit.storedToken() == stored, rejections == 0);
    EXPECT_EQ(kit.clock->waits(), std::vector<milliseconds>(static_cast<std::size_t>(rejections), milliseconds(100)));
  }
}

TEST(KitTokens, WithoutATokenTheServerDecides) {
  enum class Provider { failing, gone };
  for (const Provider provider : {Provider::failing, Provider::gone}) {
    Kit kit;
    if (provider == Provider::failing) kit.firebase->fails = true;
    if (provider == Provider::gone) kit.firebase.reset();
    // A provider that fails ends the matter; without one the authentication server is asked, and refuses.
    const Texts asked(provider == Provider::gone ? 6 : 0, "firebase");
    kit.emulator->inject({.server = EmulatorServer::mobile, .answer = EmulatorResponse{200, R"({"id":"post-bob"})"}});
    EXPECT_EQ(kit.outcomeOf(kit.reading()), "ok");
    Texts expected = asked;
    expected.push_back(readUnsigned);
    EXPECT_EQ(kit.traffic(), expected);

    EXPECT_EQ(kit.outcomeOf(kit.reading()),
              "apiError: Unauthorized (401) : the access token is missing, unknown or expired");
    const Texts traffic = kit.traffic();
    EXPECT_EQ(std::count(traffic.begin(), traffic.end(), readUnsigned), 3);
    EXPECT_EQ(traffic.size(), 3 + 3 * asked.size());
    EXPECT_THAT(kit.logger->take(),
                Contains("warning: [LoginValidator] validation failed. Code: 401 Unauthorized bearer: nil"));
  }
}

awaitable<void> clearToken(std::shared_ptr<MobileApiClient> client) { co_await client->clear(); }
awaitable<void> logOut(std::shared_ptr<MobileApiClient> client) { co_await client->logout(); }

TEST(KitTokens, LogoutForgetsTheTokenBeforeItSignsOutOfFirebase) {
  Kit kit;
  kit.signIn();
  EXPECT_EQ(kit.outcomeOf(logOut(kit.client)), "ok");
  EXPECT_EQ(kit.firebase->signOuts, 1);  // which looks into the keychain
  EXPECT_EQ(kit.traffic(), Texts());
  EXPECT_EQ(kit.outcomeOf(kit.reading()), "ok");
  EXPECT_EQ(kit.traffic(), (Texts{"firebase", readSigned}));
  EXPECT_EQ(kit.outcomeOf(clearToken(kit.client)), "ok");
  EXPECT_EQ(kit.storedToken(), "");
  EXPECT_EQ(kit.firebase->signOuts, 1);
}

TEST(KitTokens, ClearDropsTheOutcomeOfARunningRefreshAndCancelledCallsDoNot) {
  for (const bool clears : {true, false}) {
    Kit kit;
    kit.signIn();
    kit.clock->advance(lifetime);
    const std::string old = kit.storedToken();
    EmulatorFault slow = refreshFault();
    slow.delay = milliseconds(300);
    const std::size_t refresh = kit.emulator->inject(slow);
    Running<void> first(kit.runner.context(), kit.reading());
    Running<void> second(kit.runner.context(), kit.reading());
    ASSERT_TRUE(kit.runner.runUntil([&] { return kit.emulator->timesMet(refresh) == 1; }));
    if (clears) {
      kit.start(clearToken(kit.client));
    } else {
      first.cancel.emit(boost::asio::cancellation_type::total);
      second.cancel.emit(boost::asio::cancellation_type::terminal);
    }
    kit.runner.poll();
    EXPECT_EQ(first.wasCancelled() && second.wasCancelled(), !clears) << "at once";
    EXPECT_TRUE(clears || kit.storedToken() == old);
    kit.finish();
    // After `clear` both calls are sent unsigned, and rejected; one sign-in serves them.
    const std::vector<EmulatorRequest> requests = kit.requests();
    const auto isSignIn = [](const EmulatorRequest& request) { return request.target.ends_with("=firebase"); };
    EXPECT_EQ(std::count_if(requests.begin(), requests.end(), isSignIn), clears ? 1 : 0);
    EXPECT_EQ(first.value && second.value, clears);
    EXPECT_NE(kit.storedToken(), old) << "the refresh of cancelled calls runs on";
    EXPECT_TRUE(!clears || kit.storedToken() == bearer(requests.back())) << "and that of cleared ones leaves no token";
  }
}

awaitable<void> authFire(std::shared_ptr<MobileApiClient> client) {
  co_await client->authFire<EmptyDto>(HTTPRequest(HTTPMethod::post, "/phone"));
}

awaitable<void> fetchRaw(std::shared_ptr<HTTPClient> raw, std::string url) {
  const HTTPResponse response = co_await raw->fetch(HTTPRequest(HTTPMethod::get, url));
  EXPECT_TRUE(response.hasAnswer());
}

TEST(KitTokens, AreNoBusinessOfTheOtherClients) {
  Kit kit;
  kit.signIn();
  kit.emulator->inject({.path = "/phone", .answer = EmulatorResponse{204}});
  EXPECT_EQ(kit.outcomeOf(authFire(kit.client)), "ok");
  EXPECT_EQ(kit.outcomeOf(fetchRaw(kit.client->buildRaw(), "https://storage.zolvi.example/zolvi-photos-dev/x")), "ok");
  const std::vector<EmulatorRequest> requests = kit.requests();
  ASSERT_EQ(requests.size(), 2u);
  EXPECT_EQ(requests[0].target, "/main/phone");
  EXPECT_EQ(requests[0].header("Authorization"), nullptr);
  EXPECT_NE(requests[0].header("zolvi-device-id"), nullptr);
  EXPECT_EQ(requests[1].headers, (EmulatorHeaders{{"Host", "storage.zolvi.example"}}));
  EXPECT_THAT(kit.monitor->take(), Contains("enqueued GET https://storage.zolvi.example/zolvi-photos-dev/x "
                                            "storage.zolvi.example"));
}

}  // namespace
}  // namespace ZAK::Tests
