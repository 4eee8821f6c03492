#include <zvapikit/core/EmptyDto.hpp>
#include <zvapikit/core/ErrorDto.hpp>
#include <zvapikit/json/JSONDecoder.hpp>
#include <zvapikit/json/JSONEncoder.hpp>

#include <gtest/gtest.h>

#include <string>

namespace ZAK {
namespace {

TEST(ErrorDto, DescribesItself) {
  const ErrorDto full("Conflict", 409, "taken", "username-not-available", {}, {});
  EXPECT_EQ(full.description(), "Error: Conflict message : taken, keys: username-not-available");
  EXPECT_STREQ(full.what(), full.description().c_str());
  EXPECT_EQ(ErrorDto("Gone", 410, {}, {}, {}, {}).description(), "Error: Gone message : , keys: ");
}

TEST(ErrorDto, KnowsItsKeys) {
  const auto key = [](std::optional<std::string> text) { return ErrorDto("", 400, {}, text, {}, {}).key(); };
  EXPECT_EQ(key("too-many-visibility-upgrades"), ErrorDto::Key::changeVisibilityTooMuch);
  EXPECT_EQ(key("old-post"), ErrorDto::Key::oldPost);
  EXPECT_EQ(key("Old-Post"), std::nullopt);
  EXPECT_EQ(key("change-visibility-too-much"), std::nullopt);
  EXPECT_EQ(key({}), std::nullopt);
}

TEST(EmptyDto, TakesAnyJSONButNothingElse) {
  for (const char* body : {"{}", "{\"a\":1}", "[]", "5", "null", "\"\""}) {
    EXPECT_NO_THROW((void)JSONDecoder().decode<EmptyDto>(body)) << body;
  }
  for (const char* body : {"", "<html>", "{"}) EXPECT_THROW((void)JSONDecoder().decode<EmptyDto>(body), DecodingError);
  EXPECT_EQ(JSONEncoder().encode(EmptyDto()), "{}");
}

}  // namespace
}  // namespace ZAK
