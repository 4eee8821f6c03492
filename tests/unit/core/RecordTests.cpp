#include "support/RecordChecks.hpp"
#include "support/Samples.hpp"

#include <zvapikit/core/CollectionDto.hpp>
#include <zvapikit/core/EmptyDto.hpp>
#include <zvapikit/core/ErrorDto.hpp>

#include <gtest/gtest.h>

#include <string>

namespace ZAK {
namespace {

TEST(ErrorDto, Record) { test::checkRecord<ErrorDto>(test::sample("ErrorDto"), {"error", "statusCode"}); }

TEST(ErrorDto, DescribesItself) {
  const ErrorDto full("Conflict", 409, "taken", "username-not-available", {}, {});
  EXPECT_EQ(full.description(), "Error: Conflict message : taken, keys: username-not-available");
  EXPECT_STREQ(full.what(), full.description().c_str());
  EXPECT_EQ(ErrorDto("Gone", 410, {}, {}, {}, {}).description(), "Error: Gone message : , keys: ");
  const auto decoded = JSONDecoder().decode<ErrorDto>(test::sample("ErrorDto").dump());
  EXPECT_EQ(decoded.description(), full.description());
}

TEST(ErrorDto, KnowsItsKeys) {
  const auto key = [](std::optional<std::string> text) { return ErrorDto("", 400, {}, text, {}, {}).key(); };
  EXPECT_EQ(key("too-many-visibility-upgrades"), ErrorDto::Key::changeVisibilityTooMuch);
  EXPECT_EQ(key("old-post"), ErrorDto::Key::oldPost);
  EXPECT_EQ(key("Old-Post"), std::nullopt);
  EXPECT_EQ(key("change-visibility-too-much"), std::nullopt);
  EXPECT_EQ(key({}), std::nullopt);
}

TEST(CollectionDto, Record) {
  test::checkRecord<CollectionDto<std::string>>({{"data", {"a", "b"}}, {"next", "abc"}}, {"data"});
}

TEST(CursorDto, NamesPages) {
  struct {
    CursorDto cursor;
    std::optional<std::string> value;
  } const cases[] = {
      {CursorDto::start(), std::nullopt},
      {CursorDto::end(), ""},
      {CursorDto::nextIndex("abc"), "abc"},
      {CollectionDto<int>({}, "def").nextCursor(), "def"},
      {CollectionDto<int>({}, std::nullopt).nextCursor(), ""},
  };
  for (const auto& [cursor, value] : cases) {
    EXPECT_EQ(cursor.index(), value);
    EXPECT_EQ(cursor.toQueryItem(), URLQueryItem("page", value));
  }
  EXPECT_EQ(CollectionDto<int>({}, std::nullopt).nextCursor(), CursorDto::end());
  EXPECT_NE(CursorDto::nextIndex(""), CursorDto::end());
  EXPECT_NE(CursorDto::nextIndex("a"), CursorDto::nextIndex("b"));
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
