#include <zvapikit/json/JSONPrinting.hpp>

#include <gtest/gtest.h>

#include <string>

namespace ZAK {
namespace {

TEST(JSONPrinting, RedactsTokensAndQuotesNothing) {
  const std::string body =
      R"({"access_token":"canary","x":[{"token":"canary","refresh_token":["canary"],"firebase_token":null}],"client_secret":"canary","scope":"kept","url":["https://b.example/p?Signature=canary"]})";
  EXPECT_NE(prettyPrinted(body).find("canary"), std::string::npos);
  const std::string redacted = prettyPrinted(body, JSONPrinting::redacted);
  EXPECT_EQ(redacted.find("canary"), std::string::npos);
  EXPECT_NE(redacted.find("\"firebase_token\": null"), std::string::npos);
  EXPECT_NE(redacted.find("kept"), std::string::npos);
  EXPECT_NE(redacted.find("https://b.example/p?<redacted>"), std::string::npos);

  const std::string broken = R"({"access_token":"canary)";
  EXPECT_NE(prettyPrinted(broken).find("parse error"), std::string::npos);
  EXPECT_EQ(prettyPrinted(broken, JSONPrinting::redacted), "The given data was not valid JSON.");
}

TEST(JSONPrinting, SurvivesAnyBody) {
  EXPECT_EQ(prettyPrinted("{\"a\":\"\xFF\"}"), "-");
  const auto nested = [](std::size_t levels) { return std::string(levels, '[') + std::string(levels, ']'); };
  EXPECT_EQ(prettyPrinted(nested(512)).front(), '[');
  EXPECT_EQ(prettyPrinted(nested(513)), "The JSON is nested too deeply.");
  EXPECT_EQ(prettyPrinted(std::string(2'000'000, '[')), "The JSON is nested too deeply.");
  // Brackets in a text are no nesting.
  const std::string text = "\"\\\"" + std::string(600, '[') + '"';
  EXPECT_EQ(prettyPrinted(text), text);
  EXPECT_NE(prettyPrinted("<html>").find("parse error"), std::string::npos);
  EXPECT_NE(prettyPrinted("1e400"), "");
}

}  // namespace
}  // namespace ZAK
