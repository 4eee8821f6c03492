#include "support/DecodingFailure.hpp"

#include <zvapikit/json/JSONDecoder.hpp>
#include <zvapikit/json/JSONValue.hpp>
#include <zvapikit/json/JSONWriter.hpp>

#include <gtest/gtest.h>

#include <atomic>
#include <limits>
#include <new>
#include <ranges>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace {

/// Blocks of at least `largeBlock` bytes that this thread's parser took.
thread_local std::size_t largeBlock = 0;
thread_local int largeBlocks = 0;

}  // namespace

#if defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define NEW_IS_TAKEN  // all its forms, by the sanitizer's library
#endif
#endif

#ifndef NEW_IS_TAKEN
/// The parser's way to take memory, counted; otherwise what the library does.
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept try {
  if (largeBlock > 0 && size >= largeBlock) ++largeBlocks;
  return ::operator new[](size);
} catch (const std::bad_alloc&) {
  return nullptr;
}
#endif

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

/// Reads a body within a body, and counts on from the decoder's clock.
struct Envelope {
  Leaf leaf;
  Date date{};
  static Envelope decodeJSON(const JSONValue& json) {
    Envelope envelope;
    const Date before = json.getIfPresent<Date>("before").value_or(json.now());
    envelope.leaf = JSONDecoder().decode<Leaf>(json.get<std::string>("body"));
    envelope.date = json.getIfPresent<Date>("date").value_or(before);
    if (json.get<Integer>("sum") != 42) json.fail("The sum does not match.");
    return envelope;
  }
  void encodeJSON(JSONWriter&) const {}
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

TEST(JSONDecoder, TakesOnlyTheTypeAskedFor) {
  const char* const values[] = {"5", "true", "\"5\"", "[5]", "{\"a\":5}"};
  const auto check = [&]<class T>(std::type_identity<T>, std::size_t own) {
    for (std::size_t i = 0; i < std::size(values); ++i) {
      if (i == own) {
        EXPECT_NO_THROW((void)decode<T>(values[i])) << values[i];
      } else {
        EXPECT_EQ(decodingError<T>(values[i]).kind(), Kind::typeMismatch) << own << ' ' << values[i];
      }
    }
    EXPECT_EQ(decodingError<T>("null").kind(), Kind::valueNotFound);
    EXPECT_EQ(decode<std::optional<T>>("null"), std::nullopt);
  };
  check(std::type_identity<Integer>(), 0);
  check(std::type_identity<double>(), 0);
  check(std::type_identity<bool>(), 1);
  check(std::type_identity<std::string>(), 2);
  check(std::type_identity<URL>(), 2);
  check(std::type_identity<Lenient>(), 2);
  check(std::type_identity<std::vector<Integer>>(), 3);
  check(std::type_identity<std::map<std::string, Integer>>(), 4);
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

TEST(JSONDecoder, HooksReadWithTheDecodersStrategyAndClock) {
  const Date now(std::chrono::seconds(7));
  const JSONDecoder decoder(JSONDateStrategy::secondsSince2001, [&] { return now; });
  const std::string body = R"("body":"{\"name\":\"inner\"}","sum":42)";
  const auto envelopes =
      decoder.decode<std::vector<Envelope>>("[{" + body + "},{" + body + R"(,"date":-978307199,"after":1}])");
  EXPECT_EQ(envelopes[0].leaf.name, "inner");
  EXPECT_EQ(envelopes[0].date, now);
  EXPECT_EQ(envelopes[1].date, Date(std::chrono::seconds(1)));

  EXPECT_STREQ(decodingError<std::vector<Envelope>>("[{" + body + "},{}]").what(), "[1]: missing key body");
  EXPECT_STREQ(decodingError<std::vector<Envelope>>(R"([{"body":"{\"name\":\"a\"}","sum":"42"}])").what(),
               "[0].sum: expected integer, found string");
  EXPECT_STREQ(decodingError<std::vector<Envelope>>(R"([{"body":"{\"name\":\"a\"}","sum":41}])").what(),
               "[0]: The sum does not match.");
  EXPECT_STREQ(decodingError<std::vector<Envelope>>("[5]").what(), "[0]: expected object, found number");
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

TEST(JSONDecoder, CopiesNoBodyWithSpareCapacity) {
  std::string body = "[" + inQuotes(std::string(600'000, 'x')) + "]";
  body.reserve(body.size() + JSONBody::wantedPadding);
  std::thread([&body] {  // whose parser is new
    (void)decode<std::vector<std::string>>(body);
    largeBlock = body.size();
    (void)decode<std::vector<std::string>>(body);
    EXPECT_EQ(largeBlocks, 0);
#ifndef NEW_IS_TAKEN
    (void)decode<std::vector<std::string>>(std::string_view(body));
    EXPECT_EQ(largeBlocks, 1);
#endif
  })
      .join();
}

TEST(JSONDecoder, GrowsLargeArraysOnlyAsElementsTurnOutGood) {
  // Two million leaves would take far more memory than the body; the first of them is already at fault.
  std::string body = "[";
  for (int i = 0; i < 2'000'000; ++i) body += "{},";
  body.back() = ']';
  EXPECT_STREQ(decodingError<std::vector<Leaf>>(body).what(), "[0]: missing key name");
}

TEST(JSONDecoder, ServesSeveralThreads) {
  const JSONDecoder decoder;
  std::atomic<int> good = 0;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 4; ++thread) {
    threads.emplace_back([&decoder, &good, thread] {
      const std::string name(static_cast<std::size_t>(thread) * 100, 'x');
      for (int i = 0; i < 200; ++i) good += decoder.decode<Leaf>("{\"name\":" + inQuotes(name) + "}").name == name;
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(good, 800);
}

}  // namespace
}  // namespace ZAK
