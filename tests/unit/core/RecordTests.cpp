#include <zvapikit/core/ErrorDto.hpp>

#include <gtest/gtest.h>

#include <string>

namespace ZAK {
namespace {

TEST(ErrorDto, KnowsItsKeys) {
  const auto key = [](std::optional<std::string> text) { return ErrorDto("", 400, {}, text, {}, {}).key(); };
  EXPECT_EQ(key("too-many-visibility-upgrades"), ErrorDto::Key::changeVisibilityTooMuch);
  EXPECT_EQ(key("old-post"), ErrorDto::Key::oldPost);
  EXPECT_EQ(key("Old-Post"), std::nullopt);
  EXPECT_EQ(key("change-visibility-too-much"), std::nullopt);
  EXPECT_EQ(key({}), std::nullopt);
}

}  // namespace
}  // namespace ZAK
