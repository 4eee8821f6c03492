#include <zvapikit/json/JSONDecoder.hpp>
#include <zvapikit/json/JSONEncoder.hpp>

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <string>
#include <vector>

namespace ZAK {
namespace {

struct Row {
  std::optional<std::string> plain;
  NullEncodable<std::string> cleared;
  std::vector<double> numbers;
  std::map<std::string, std::optional<int>> map;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&Row::plain>("plain"), JSONField::of<&Row::cleared>("cleared"),
                      JSONField::of<&Row::numbers>("numbers"), JSONField::of<&Row::map>("map")};
  }
};

template <class T>
std::string encode(const T& value) {
  return JSONEncoder().encode(value);
}

template <class T>
std::string encodingError(const T& value, JSONDateStrategy dates = JSONDateStrategy::javaScriptISO8601) {
  try {
    return "encoded " + JSONEncoder(dates).encode(value);
  } catch (const EncodingError& error) {
    return error.what();
  }
}

TEST(JSONEncoder, LeavesOutAbsentFieldsAndWritesAskedForNulls) {
  EXPECT_EQ(encode(Row()), R"({"cleared":null,"numbers":[],"map":{}})");
  const Row row{"p", {"c"}, {1, 0.5, -2e-7}, {{"a", 1}, {"b", std::nullopt}}};
  const std::string text = R"({"plain":"p","cleared":"c","numbers":[1,0.5,-2e-07],"map":{"a":1}})";
  EXPECT_EQ(encode(row), text);
  EXPECT_EQ(encode(std::vector<std::optional<int>>{1, std::nullopt}), "[1,null]");
}

TEST(JSONEncoder, EscapesText) {
  using namespace std::string_literals;
  const std::pair<std::string, std::string> cases[] = {
      {"", ""},
      {"a / b\x7F", "a / b\x7F"},
      {"é\xF0\x9F\x98\x8D", "é\xF0\x9F\x98\x8D"},
      {"\"\\", R"(\"\\)"},
      {"\b\t\n\f\r", R"(\b\t\n\f\r)"},
      {"\0\x01\v\x1F"s, R"(\u0000\u0001\u000b\u001f)"},
  };
  for (const auto& [text, escaped] : cases) {
    EXPECT_EQ(encode(text), '"' + escaped + '"');
    EXPECT_EQ((encode(std::map<std::string, int>{{text, 1}})), "{\"" + escaped + "\":1}");
  }
  // Every byte at every place of a word, among others that need no escape.
  for (const std::size_t size : {3u, 7u, 13u, 37u}) {
    for (int byte = 1; byte < 0x80; ++byte) {
      for (std::size_t place = 0; place < size; ++place) {
        std::string text(size, ' ');
        text[place] = static_cast<char>(byte);
        const std::string json = encode(text);
        EXPECT_EQ(JSONDecoder().decode<std::string>(json), text) << byte << ' ' << place << " of " << size;
      }
    }
  }
}

TEST(JSONEncoder, WritesNumbersThatReadBackEqual) {
  for (const double number : {0.1, 1.0 / 3, 1e22, 1.7976931348623157e308, 5e-324, -0.0, 123456789.123}) {
    EXPECT_EQ(JSONDecoder().decode<double>(encode(number)), number);
  }
  EXPECT_EQ(encode(1500.0), "1500");
  EXPECT_EQ(encode(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
  EXPECT_EQ(encode(-7), "-7");
}

TEST(JSONEncoder, NamesWhatHasNoJSONForm) {
  EXPECT_EQ(encodingError(std::vector<Row>{Row(), Row{{}, {}, {1, std::numeric_limits<double>::infinity()}, {}}}),
            "[1].numbers[1]: The number is not finite.");
  EXPECT_EQ(encodingError(Row{"\xFF", {}, {}, {}}), "plain: The text is not valid UTF-8.");
  EXPECT_EQ(encodingError(std::numeric_limits<double>::quiet_NaN()), "The number is not finite.");
  for (const char* text : {"\x80", "\xC0\xAF", "\xED\xA0\x80", "abcdefgh\xE2\x82", "abcdefghijklmnop\xE2\x82"}) {
    EXPECT_EQ(encodingError(std::string(text)), "The text is not valid UTF-8.");
  }
  EXPECT_EQ(encodingError(Date::max()), "The date is outside the years 1 to 9999.");
  EXPECT_EQ(encodingError(Date(std::chrono::seconds(253402300800))), "The date is outside the years 1 to 9999.");
  EXPECT_EQ(encodingError(Date::min(), JSONDateStrategy::secondsSince2001),
            "The date is outside the range of numbers of seconds.");
}

TEST(JSONEncoder, WritesDatesByItsStrategy) {
  EXPECT_EQ(encode(Date(std::chrono::microseconds(1500))), R"("1970-01-01T00:00:00.002Z")");

  const JSONEncoder encoder(JSONDateStrategy::secondsSince2001);
  const Date reference(std::chrono::seconds(978307200));
  const std::pair<long long, const char*> cases[] = {
      {0, "0"},           {1, "0.000001"},  {-1, "-0.000001"},     {-500000, "-0.5"},
      {-1500000, "-1.5"}, {60000000, "60"}, {1234567, "1.234567"}, {-1000001, "-1.000001"}};
  for (const auto& [microseconds, text] : cases) {
    EXPECT_EQ(encoder.encode(reference + std::chrono::microseconds(microseconds)), text);
  }
}

}  // namespace
}  // namespace ZAK
