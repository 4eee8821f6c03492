#include "support/DecodingFailure.hpp"

#include <zvapikit/json/JSONDecoder.hpp>

#include <gtest/gtest.h>

#include <limits>
#include <ranges>
#include <string>
#include <string_view>
#include <vector>

namespace ZAK {
namespace {

using Tests::decodingError;
using Kind = DecodingError::Kind;
using Integer = std::int64_t;

enum class Strict { one, two };
enum class Lenient { one, other };

}  // namespace

template <>
struct RawValues<Strict> {
  static constexpr std::string_view name = "Strict";
  static constexpr std::array cases = {RawCase{Strict::one, "one"}, RawCase{Strict::two, "two"}};
};
template <>
struct RawValues<Lenient> {
  static constexpr std::string_view name = "Lenient";
  static constexpr std::array cases = {RawCase{Lenient::one, "one"}, RawCase{Lenient::other, "other"}};
};
template <>
inline constexpr bool CodableLastByDefault<Lenient> = true;

namespace {

struct Leaf {
  std::string name;
  std::optional<Integer> number;
  std::optional<Strict> strict;
  std::optional<Lenient> lenient;
  bool operator==(const Leaf&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&Leaf::name>("name"), JSONField::of<&Leaf::number>("number"),
                      JSONField::of<&Leaf::strict>("strict"), JSONField::of<&Leaf::lenient>("lenient")};
  }
};

struct Tree {
  Leaf first;
  std::vector<Leaf> leaves;
  std::map<std::string, Integer> counts;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&Tree::first>("first"), JSONField::of<&Tree::leaves>("leaves"),
                      JSONField::of<&Tree::counts>("counts")};
  }
};

template <class T>
T decode(JSONBody body) {
  return JSONDecoder().decode<T>(body);
}

std::string inQuotes(std::string_view text) { return '"' + std::string(text) + '"'; }

TEST(JSONDecoder, ConvertsNumbers) {
  const std::pair<const char*, Integer> integers[] = {
      {"1500", 1500},
      {"1500.0", 1500},
      {"1.5e3", 1500},
      {"1e2", 100},
      {"100e-2", 1},
      {"-0", 0},
      {"-0.0", 0},
      {"9223372036854775807", std::numeric_limits<Integer>::max()},
      {"-9223372036854775808", std::numeric_limits<Integer>::min()},
      {"-9.223372036854775808e18", std::numeric_limits<Integer>::min()}};
  for (const auto& [text, value] : integers) EXPECT_EQ(decode<Integer>(text), value) << text;
  for (const char* text :
       {"1500.5", "9223372036854775808", "18446744073709551615", "1e19", "-1e19", "9.223372036854775808e18", "1e-1"}) {
    EXPECT_EQ(decodingError<Integer>(text).kind(), Kind::dataCorrupted) << text;
  }
  EXPECT_EQ(decode<int>("-2147483648"), std::numeric_limits<int>::min());
  EXPECT_EQ(decodingError<int>("2147483648").kind(), Kind::dataCorrupted);
  EXPECT_EQ(decode<double>("1500"), 1500.0);
  EXPECT_EQ(decode<double>("18446744073709551615"), 18446744073709551615.0);
  EXPECT_EQ(decode<double>("0.1"), 0.1);
}

TEST(JSONDecoder, ChecksTheWholeBodyAlsoWhereItIsIgnored) {
  using namespace std::string_view_literals;
  constexpr std::string_view invalid =
      "[|{|.5|5.|01|+1| \n|NaN|'x'|tru|\"a|[1,]|[1 2]|1e400|// a\n1|\"\0\"|Infinity|\"a\nb\"|\"\x80\"|"
      "\"\\x41\"|{\"a\":1,}|\"\\ud800\"|\"\xC0\xAF\"|\"\\udc00x\"|\"\xED\xA0\x80\"|"sv;
  for (const auto part : std::views::split(invalid, '|')) {
    const std::string text(part.begin(), part.end());
    const DecodingError error = decodingError<Leaf>(text);
    EXPECT_EQ(error.kind(), Kind::dataCorrupted) << text;
    EXPECT_EQ(error.debugDescription(), "The given data was not valid JSON.") << text;
    EXPECT_TRUE(error.codingPath().empty());
    EXPECT_THROW((void)decode<Leaf>("{\"name\":\"a\",\"ignored\":" + text + "}"), DecodingError) << text;
  }
  EXPECT_THROW((void)decode<Leaf>("{\"name\":\"a\"} x"), DecodingError);
  EXPECT_THROW((void)decode<Leaf>("\xEF\xBB\xBF\xEF\xBB\xBF{\"name\":\"a\"}"), DecodingError);
  EXPECT_EQ(decode<Leaf>("\xEF\xBB\xBF {\"name\":\"\\u00e9\\ud83d\\ude00/\\/\"}\n").name, "é😀//");
}

TEST(JSONDecoder, LimitsNesting) {
  for (const std::string bottom : {"", "5", "\"[{\"", "{}"}) {
    const auto body = [&](std::size_t levels) {
      const std::size_t arrays = levels - 1 - (bottom == "{}");
      return "{\"name\":\"a\",\"ignored\":" + std::string(arrays, '[') + bottom + std::string(arrays, ']') + "}";
    };
    EXPECT_EQ(decode<Leaf>(body(511)).name, "a") << bottom;
    EXPECT_EQ(decode<Leaf>(body(512)).name, "a") << bottom;
    EXPECT_THROW((void)decode<Leaf>(body(513)), DecodingError) << bottom;
    EXPECT_THROW((void)decode<Leaf>(body(1'000'000)), DecodingError) << bottom;
  }
}

TEST(JSONDecoder, TakesTheFirstOfDuplicateKeysInAnyOrderOfArrival) {
  const Leaf expected{"a", 1, Strict::two, Lenient::other};
  const char* const bodies[] = {
      R"({"name":"a","number":1,"strict":"two","lenient":"new"})",
      R"({"lenient":"other","x":[{"name":"z"}],"strict":"two","number":1,"name":"a","y":{}})",
      R"({"number":1,"number":"ignored","name":"a","name":null,"lenient":"One","strict":"two"})",
      R"({"n\u0061me":"a","number":1,"Name":"z","strict":"two","lenient":""})",
  };
  for (const char* body : bodies) EXPECT_EQ(decode<Leaf>(body), expected) << body;
  EXPECT_EQ(decode<Leaf>(R"({"number":null,"number":1,"name":"a"})").number, std::nullopt);
  EXPECT_EQ((decode<std::map<std::string, Integer>>(R"({"a":1,"b":2,"a":3})")),
            (std::map<std::string, Integer>{{"a", 1}, {"b", 2}}));
}

TEST(JSONDecoder, TellsWhatIsWrongAndWhere) {
  const std::string good = R"("first":{"name":"a"},)";
  struct {
    std::string body;
    Kind kind;
    const char* what;
    const char* debugDescription;
  } const cases[] = {
      {"[]", Kind::typeMismatch, "expected object, found array",
       "Expected to decode Dictionary<String, Any> but found an array instead."},
      {"{}", Kind::keyNotFound, "missing key first", "No value associated with key first (\"first\")."},
      {"{" + good + R"("leaves":[{"name":"b"},{"number":1}],"counts":{}})", Kind::keyNotFound,
       "leaves[1]: missing key name", "No value associated with key name (\"name\")."},
      {"{" + good + R"("leaves":[{"name":"b","number":"1"}],"counts":{}})", Kind::typeMismatch,
       "leaves[0].number: expected integer, found string", "Expected to decode Int but found a string instead."},
      {"{" + good + R"("leaves":[{"name":true}],"counts":{}})", Kind::typeMismatch,
       "leaves[0].name: expected string, found boolean", "Expected to decode String but found bool instead."},
      {"{" + good + R"("leaves":[null],"counts":{}})", Kind::valueNotFound, "leaves[0]: expected object, found null",
       "Cannot get value of type Dictionary<String, Any> -- found null value instead"},
      {"{" + good + R"("leaves":[],"counts":{"ok":1,"bad":1.5}})", Kind::dataCorrupted,
       "counts.bad: Parsed JSON number <1.5> does not fit in Int.", "Parsed JSON number <1.5> does not fit in Int."},
      {"{" + good + R"("leaves":[{"name":"b","strict":"One"}],"counts":{}})", Kind::dataCorrupted,
       "leaves[0].strict: Cannot initialize Strict from invalid String value One",
       "Cannot initialize Strict from invalid String value One"},
      // The first by the record's own order, not by the body's.
      {R"({"counts":5,"leaves":{},"first":{"number":true}})", Kind::keyNotFound, "first: missing key name",
       "No value associated with key name (\"name\")."},
  };
  for (const auto& expected : cases) {
    const DecodingError error = decodingError<Tree>(expected.body);
    EXPECT_EQ(error.kind(), expected.kind) << expected.body;
    EXPECT_STREQ(error.what(), expected.what);
    EXPECT_EQ(error.debugDescription(), expected.debugDescription);
  }
  const DecodingError error = decodingError<std::vector<Leaf>>(R"([{"name":"a"},{"name":7}])");
  EXPECT_STREQ(error.what(), "[1].name: expected string, found number");
  EXPECT_EQ(error.codingPath().front().stringValue(), "Index 1");
}

TEST(JSONDecoder, ErrorsQuoteNoTextOfTheBody) {
  const std::string canary = "canary-8c1f";
  const std::string bodies[] = {"{\"name\":\"" + canary, "{\"name\":5,\"number\":\"" + canary + "\"}",
                                "{\"name\":\"a\",\"number\":\"" + canary + "\"}", "{\"name\":{\"" + canary + "\":1}}"};
  for (const std::string& body : bodies) {
    const DecodingError error = decodingError<Leaf>(body);
    EXPECT_EQ((error.what() + error.debugDescription()).find(canary), std::string::npos) << error.what();
  }
  EXPECT_EQ(std::string(decodingError<Date>(inQuotes(canary)).what()).find(canary), std::string::npos);
  EXPECT_EQ(std::string(decodingError<URL>(inQuotes("https://" + canary + ":x/")).what()).find(canary),
            std::string::npos);
  EXPECT_LT(decodingError<Strict>(inQuotes(std::string(5000, 'x'))).debugDescription().size(), 200u);
}

TEST(JSONDecoder, ReadsDatesByItsStrategy) {
  EXPECT_EQ(decode<Date>("\"1970-01-01T00:00:01.5Z\""), Date(std::chrono::milliseconds(1500)));
  EXPECT_EQ(decodingError<Date>("\"2023-04-05\"").debugDescription(),
            "Expected date string to be JavaScript-ISO8601-formatted.");
  EXPECT_EQ(decodingError<Date>("5").kind(), Kind::typeMismatch);

  const JSONDecoder decoder(JSONDateStrategy::secondsSince2001);
  EXPECT_EQ(decoder.decode<Date>("-978307200"), Date());
  EXPECT_EQ(decoder.decode<Date>("-978307199.75"), Date(std::chrono::milliseconds(250)));
  EXPECT_EQ(decodingError<Date>("\"2023-04-05T17:09:12Z\"", decoder).kind(), Kind::typeMismatch);
  EXPECT_EQ(decodingError<Date>("1e13", decoder).kind(), Kind::dataCorrupted);
}

TEST(JSONDecoder, ReadsBodiesOfAnySizeAndPlacing) {
  // A string whose buffer ends with the text, one with room behind it, and one that a larger body follows.
  for (const std::size_t count : {std::size_t{3}, std::size_t{60'000}, std::size_t{300'000}, std::size_t{3}}) {
    std::string body = "[";
    for (std::size_t i = 0; i < count; ++i) body += std::to_string(i) + ',';
    body.back() = ']';
    body.shrink_to_fit();
    const auto tight = decode<std::vector<Integer>>(body);
    body.reserve(body.size() + 64);
    EXPECT_EQ(decode<std::vector<Integer>>(body), tight);
    ASSERT_EQ(tight.size(), count);
    EXPECT_EQ(tight.back(), static_cast<Integer>(count) - 1);
  }
}

}  // namespace
}  // namespace ZAK
