#include "Kit.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ZAK::Tests {
namespace {

using testing::ElementsAre;

constexpr const char* line = "[ZAK] request : GET /content/posts/post-bob";
constexpr const char* refusal =
    R"({"statusCode":409,"requestId":"r1","error":"Conflict","errorKey":"username-not-available","message":"taken / used"})";
constexpr const char* refusalPrinted = R"({
  "error": "Conflict",
  "errorKey": "username-not-available",
  "message": "taken / used",
  "requestId": "r1",
  "statusCode": 409
}
)";

awaitable<void> deleteMyPost(ContentDomain content) { co_await content.deleteMyPost(); }

/// Runs a call; yields its outcome and what it printed.
std::pair<std::string, std::string> printing(Kit& kit, awaitable<void> call) {
  testing::internal::CaptureStdout();
  std::string outcome = kit.outcomeOf(std::move(call));
  return {std::move(outcome), testing::internal::GetCapturedStdout()};
}

TEST(KitExecutor, LogsEachAnswerAndPrintsTheFailingOnes) {
  struct Case {
    EmulatorResponse answer;
    std::string outcome;
    std::string logged;  ///< behind the request
    std::string printed;
  };
  const std::string missing = "missing key id";
  Kit kit;
  kit.signIn();
  for (const Case& c : {
           Case{{200, R"({"id":"post-bob"})"}, "ok", " ✅", ""},
           Case{{200, R"({"ID":1})"}, missing, " ❌ \n error: " + missing, "{\n  \"ID\": 1\n}\n"},
           Case{{204},
                "httpError: HTTP 204 No Content with an empty body",
                " ❌ \n error: HTTP 204 No Content with an empty body",
                ""},
           Case{{500}, "httpError: HTTP 500 Internal Server Error", " ❌ \n error: HTTP 500 Internal Server Error", ""},
           Case{{404, R"({"error":"no status"})"},
                "httpError: HTTP 404 Not Found",
                " ❌ \n error: HTTP 404 Not Found",
                "{\n  \"error\": \"no status\"\n}\n"},
           Case{{502, "\xff<html>"}, "httpError: HTTP 502 Bad Gateway", " ❌ \n error: HTTP 502 Bad Gateway", "-\n"},
           Case{{409, refusal},
                "apiError: Conflict (409) : username-not-available",
                " ❌ \n error: HTTP 409 Conflict (Error: Conflict message : taken / used, keys: username-not-available",
                refusalPrinted},
       }) {
    SCOPED_TRACE(std::to_string(c.answer.status) + " " + c.answer.body);
    kit.emulator->inject({.answer = c.answer});
    const auto [outcome, printed] = printing(kit, kit.reading());
    EXPECT_EQ(outcome, c.outcome);
    EXPECT_EQ(printed, c.printed);
    EXPECT_THAT(kit.logger->take(), ElementsAre((c.outcome == "ok" ? "message: " : "error: ") + (line + c.logged)));
  }
}

TEST(KitExecutor, TakesAnEmptyAnswerForAnEmptyRecordWithoutAWord) {
  Kit kit;
  kit.signIn();
  for (const int status : {200, 204}) {
    kit.emulator->inject({.method = "DELETE", .answer = EmulatorResponse{status}});
    EXPECT_EQ(printing(kit, deleteMyPost(ContentDomain(kit.client))), std::pair(std::string("ok"), std::string()));
    EXPECT_THAT(kit.logger->take(), ElementsAre());
  }
  kit.emulator->inject({.method = "DELETE", .answer = EmulatorResponse{200, " "}});
  EXPECT_NE(kit.outcomeOf(deleteMyPost(ContentDomain(kit.client))), "ok") << "blanks are no empty answer";
}

TEST(KitExecutor, KeepsSecretsOutOfLinesAndPrintsWhenAskedTo) {
  for (const bool redacts : {false, true}) {
    Kit kit({.redactsSecrets = redacts});
    kit.signIn();
    const std::string token = kit.storedToken();
    // The third answer in a row is final: what it holds is printed.
    const std::string body = R"({"access_token":"access-canary","note":"x"})";
    kit.emulator->inject({.times = 1, .answer = EmulatorResponse{401}});
    kit.emulator->inject({.server = EmulatorServer::authentication, .answer = EmulatorResponse{201, body}});
    kit.emulator->inject({.server = EmulatorServer::mobile, .times = 2, .answer = EmulatorResponse{403, "no JSON"}});
    const auto [outcome, printed] = printing(kit, kit.reading());
    EXPECT_EQ(outcome, "httpError: HTTP 403 Forbidden");
    EXPECT_EQ(kit.logger->take().front(),
              "warning: [LoginValidator] validation failed. Code: 401 Unauthorized bearer: " +
                  (redacts ? "<redacted>" : "Bearer " + token));
    EXPECT_EQ(printed.find("access-canary") == std::string::npos, redacts) << printed;
    EXPECT_EQ(printed.find("\"access_token\": \"<redacted>\"") != std::string::npos, redacts) << printed;
    EXPECT_EQ(printed.find("'no'") == std::string::npos, redacts) << "a parser that quotes the body: " << printed;
    EXPECT_EQ(printed.find("The given data was not valid JSON.") != std::string::npos, redacts) << printed;
  }
}

TEST(KitMonitor, IsToldOfBothServersInOrder) {
  Kit kit;
  kit.emulator->inject({.server = EmulatorServer::mobile, .answer = EmulatorResponse{401}});
  EXPECT_EQ(kit.outcomeOf(kit.reading()), "ok");
  const std::string token = "POST https://auth-dev.zolvi.example/main/token ";
  const std::string post = "GET /content/posts/post-bob ";
  EXPECT_THAT(kit.monitor->take(), ElementsAre("enqueued " + token + "auth-dev.zolvi.example", "metrics " + token + "1",
                                               "received " + token + "a body", "completed " + token + "without error",
                                               "enqueued " + post + "mobile-dev.zolvi.example", "metrics " + post + "1",
                                               "enqueued " + token + "auth-dev.zolvi.example", "metrics " + token + "1",
                                               "received " + token + "a body", "completed " + token + "without error",
                                               "metrics " + post + "2", "received " + post + "a body",
                                               "completed " + post + "without error"));

  kit.emulator->inject({.answer = EmulatorResponse{500}});
  EXPECT_EQ(kit.outcomeOf(kit.reading()), "httpError: HTTP 500 Internal Server Error");
  EXPECT_THAT(kit.monitor->take(),
              ElementsAre("enqueued " + post + "mobile-dev.zolvi.example", "metrics " + post + "1",
                          "received " + post + "no body", "completed " + post + "HTTP 500 Internal Server Error"));
}

}  // namespace
}  // namespace ZAK::Tests
