#include <zvapikit/json/JavaScriptISO8601DateFormatter.hpp>
#include <zvapikit/model/MemoriesRecapDto.hpp>

namespace ZAK {
namespace {

std::optional<Date> tolerantDate(const JSONValue& json, std::string_view key) {
  const auto text = json.getIfPresent<std::string>(key);
  return text ? JavaScriptISO8601DateFormatter::fractional(*text) : std::nullopt;
}

}  // namespace

MemoriesRecapDto MemoriesRecapDto::decodeJSON(const JSONValue& json) {
  MemoriesRecapDto recap;
  recap.id = json.get<std::string>("id");
  recap.videoStatus = json.get<RecapStatusDto>("videoStatus");
  recap.year = json.get<std::int64_t>("year");
  recap.countdownEnd = tolerantDate(json, "countdownEnd");
  recap.generationWindowEnd = tolerantDate(json, "generationWindowEnd");
  recap.queuePosition = json.getIfPresent<std::int64_t>("queuePosition");
  recap.videoUrl = json.getIfPresent<URL>("videoUrl");
  recap.clientFallback = json.getIfPresent<bool>("clientFallback");
  return recap;
}

}  // namespace ZAK
