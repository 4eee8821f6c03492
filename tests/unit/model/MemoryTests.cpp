#include "model/MemoryDay.hpp"
#include "support/DecodingFailure.hpp"
#include "support/EnvironmentVariable.hpp"
#include "support/Samples.hpp"
#include "support/TemporaryDirectory.hpp"

#include <zvapikit/core/ZAKError.hpp>
#include <zvapikit/json/JSONEncoder.hpp>
#include <zvapikit/json/JavaScriptISO8601DateFormatter.hpp>
#include <zvapikit/model/MemoriesDto.hpp>
#include <zvapikit/model/MemoriesRecapDto.hpp>
#include <zvapikit/model/MemoriesVideoDto.hpp>
#include <zvapikit/model/MemoriesVideoLocation.hpp>

#include <gtest/gtest.h>

#include <optional>
#include <ranges>
#include <string>
#include <string_view>

namespace ZAK {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using Tests::sample;

TEST(MemoryDay, BeginsWithItsFirstInstant) {
  const struct {
    const char* day;
    const char* zone;
    const char* start;
  } cases[] = {
      {"2023-07-14", "Europe/Paris", "2023-07-13T22:00:00.000Z"},
      {"2023-01-14", "Europe/Paris", "2023-01-13T23:00:00.000Z"},
      {"2023-7-4", "Asia/Kathmandu", "2023-07-03T18:15:00.000Z"},
      {"2024-02-29", "UTC", "2024-02-29T00:00:00.000Z"},
      {"0001-01-01", "America/New_York", "0001-01-01T04:56:02.000Z"},
      {"2018-11-04", "America/Sao_Paulo", "2018-11-04T03:00:00.000Z"},  // the clocks go from 0:00 to 1:00
      {"2023-04-28", "Africa/Cairo", "2023-04-27T22:00:00.000Z"},       // likewise
      {"2011-12-30", "Pacific/Apia", "2011-12-30T10:00:00.000Z"},       // a day that never was
      {"2023-11-05", "America/Havana", "2023-11-05T05:00:00.000Z"},     // the clocks go from 1:00 to 0:00
      {"2023-07-14", "Nowhere/Land", "2023-07-14T00:00:00.000Z"},
  };
  for (const auto& [day, zone, start] : cases) {
    const auto date = startOfDay(day, zone);
    ASSERT_TRUE(date) << day << zone;
    EXPECT_EQ(JavaScriptISO8601DateFormatter::string(*date), start) << day << zone;
  }
}

TEST(MemoryDay, RefusesWhatIsNoDay) {
  constexpr std::string_view cases =
      "2023-07-|2023-07|2023-00-01|2023-13-01|2023-01-00|2023-01-32|2023-02-29|2023-04-31|0000-01-01|14/07/2023|"
      "14-07-2023|2023 07 14|2023-07-1x|2023--7-14|2023-+7-14|023-07-14|-2023-07-14|12023-07-14|2023-007-14|"
      "2023-07-014|2023-07-14 | 2023-07-14|";
  for (const auto part : std::views::split(cases, '|')) {
    const std::string_view text(part.begin(), part.end());
    EXPECT_EQ(startOfDay(text, "UTC"), std::nullopt) << text;
  }
}

TEST(MemoryDto, DatesItselfInTheZoneOfTheMachine) {
  json body = sample("MemoryDto");
  for (const char* zone : {"Pacific/Auckland", "America/Los_Angeles"}) {
    const Tests::EnvironmentVariable variable("TZ", zone);
    EXPECT_EQ(JSONDecoder().decode<MemoryDto>(body.dump()).memoryDate, startOfDay("2023-07-14", zone));
  }
  const Date now = Date() + std::chrono::hours(5);
  const JSONDecoder decoder(JSONDateStrategy::javaScriptISO8601, [now] { return now; });
  body["memoryDay"] = "14/07/2023";
  body["memoryDate"] = "2023-07-14T00:00:00.000Z";
  const auto memory = decoder.decode<MemoryDto>(body.dump());
  EXPECT_EQ(memory.memoryDate, now);
  EXPECT_EQ(memory.memoryDay, "14/07/2023");
}

TEST(MemoriesRecapDto, ToleratesDatesInOtherForms) {
  for (const char* text : {"2023-12-31T23:00:00Z", "soon", ""}) {
    for (const std::string key : {"countdownEnd", "generationWindowEnd"}) {
      json body = sample("MemoriesRecapDto");
      body[key] = text;
      const auto recap = JSONDecoder().decode<MemoriesRecapDto>(body.dump());
      EXPECT_EQ(recap.countdownEnd.has_value(), key != "countdownEnd") << text;
      EXPECT_EQ(recap.generationWindowEnd.has_value(), key == "countdownEnd") << text;
    }
  }
}

TEST(MemoriesVideoDto, FindsItsThumbnailsUnderOtherKeys) {
  json body = sample("MemoriesVideoDto");
  body["secondary"]["width"] = 7;
  const auto video = JSONDecoder().decode<MemoriesVideoDto>(body.dump());
  EXPECT_EQ(video.thumbPrimary->width, 1500);
  EXPECT_EQ(video.thumbSecondary->width, 7);
}

TEST(MemoriesVideoLocation, TravelsUnderTheNameOfItsCase) {
  const json documents = {{"documents", {{"path", "memories/a b.mp4"}}}};
  const json absolute = {{"absolute", {{"url", "file:///v/a%20b.mp4"}}}};
  const auto decoded = [](const json& body) { return JSONDecoder().decode<MemoriesVideoLocation>(body.dump()); };
  for (const json& body : {documents, absolute}) {
    EXPECT_EQ(json::parse(JSONEncoder().encode(decoded(body))), body);
    EXPECT_EQ(decoded(body).documentsPath() != nullptr, body == documents);
    EXPECT_EQ(decoded(body).absoluteUrl() == nullptr, body == documents);
  }
  EXPECT_NE(decoded(documents), decoded(absolute));

  const char* const others[] = {R"({"documents":{"path":"a"},"absolute":{"url":"file:///a"}})",
                                R"({"documents":{"path":"a"},"absolute":null})", "{}", R"({"other":{}})"};
  for (const char* body : others) {
    const DecodingError error = Tests::decodingError<MemoriesVideoLocation>(body);
    EXPECT_EQ(error.kind(), DecodingError::Kind::typeMismatch) << body;
    EXPECT_EQ(error.debugDescription(), "Invalid number of keys found, expected one.");
  }
  EXPECT_STREQ(Tests::decodingError<MemoriesVideoLocation>(R"({"absolute":{"url":""}})").what(),
               "absolute.url: Invalid URL string.");
}

TEST(MemoriesVideoLocation, NamesTheFilesOfRecaps) {
  const Tests::TemporaryDirectory home;
  const fs::path documents = home.path() / "Documents";
  using Location = MemoriesVideoLocation;
  for (const std::string_view name : {std::string_view("a/b"), std::string_view("a..b"), std::string_view("a\0b", 3)}) {
    EXPECT_THROW((void)Location::serverGenerated(*URL::parse("https://h/v.mp4"), name, documents), ZAKError) << name;
    EXPECT_THROW((void)Location::clientGenerated(name, documents), ZAKError) << name;
  }
  EXPECT_FALSE(fs::exists(documents)) << "nothing is made for a name that is refused";
  EXPECT_EQ(*Location::serverGenerated(*URL::parse("https://h/v"), "2023", documents).documentsPath(),
            "memories/server/Zolvi 2023 Video Recap.");
  EXPECT_EQ(fs::status(documents / "memories/server").permissions(), fs::perms::owner_all);
  EXPECT_EQ(*Location::clientGenerated("2023", documents).documentsPath(),
            "memories/client/Zolvi 2023 Video Recap..mp4");
}

TEST(MemoriesVideoLocation, IsAUrlBelowTheDocuments) {
  const auto url = [](const char* path) { return MemoriesVideoLocation::documents(path).url("/d #1").string(); };
  EXPECT_EQ(url("memories/Zolvi é?%41.mp4"), "file:///d%20%231/memories/Zolvi%20%C3%A9%3F%2541.mp4");
  EXPECT_EQ(url("/etc/v.mp4"), "file:///d%20%231/etc/v.mp4");
  const URL elsewhere = *URL::parse("file:///v.mp4");
  EXPECT_EQ(MemoriesVideoLocation::absolute(elsewhere).url("/d"), elsewhere);
}

TEST(MemoriesVideoLocation, HasAPathOnTheDevice) {
  EXPECT_EQ(MemoriesVideoLocation::documents("memories/a b.mp4").path("/d #1"), "/d #1/memories/a b.mp4");
  EXPECT_EQ(MemoriesVideoLocation::absolute(*URL::parse("file:///v/a%20b.mp4")).path("/d"), "/v/a b.mp4");
  for (const char* elsewhere : {"https://h/v.mp4", "file://h/v.mp4", "/v.mp4"}) {
    EXPECT_THROW((void)MemoriesVideoLocation::absolute(*URL::parse(elsewhere)).path("/d"), ZAKError) << elsewhere;
  }
}

}  // namespace
}  // namespace ZAK
