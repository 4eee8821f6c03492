// Decoding and encoding of usual bodies against what a host would write by hand on top of four parsers.
//   bench_json            measures
//   bench_json DIRECTORY  writes the bodies that the transfer benchmark is served

#include "Bodies.hpp"
#include "JSONPeers.hpp"
#include "Measure.hpp"
#include "model/AnalyticsBody.hpp"

#include <zvapikit/json/JSONDecoder.hpp>
#include <zvapikit/json/JSONEncoder.hpp>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <utility>

namespace {

constexpr int pairs = 11;

void require(bool holds, const std::string& what) {
  if (holds) return;
  std::fprintf(stderr, "bench_json: %s\n", what.c_str());
  std::exit(1);
}

using Side = std::pair<std::string, std::function<void()>>;

/// Seconds that one call of `work` takes.
template <class Work>
double secondsOf(const Work& work) {
  constexpr double enough = 0.03;
  const double begin = Bench::threadSeconds();
  double spent = 0;
  int calls = 0;
  // The clock costs almost as much as a small body does, so it is not asked after each.
  for (int batch = 1; spent < enough; calls += batch, batch *= spent < enough / 16 ? 2 : 1) {
    for (int i = 0; i < batch; ++i) work();
    spent = Bench::threadSeconds() - begin;
  }
  return spent / calls;
}

/// Measures the sides in turn, each pair in the other direction.
void compare(const std::string& name, std::vector<Side> sides) {
  for (const auto& side : sides) side.second();
  for (int pair = 0; pair < pairs; ++pair) {
    for (const auto& [side, work] : sides) Bench::report(name, pair, side, secondsOf(work));
    std::reverse(sides.begin(), sides.end());
  }
}

template <class Result>
void compareDecoding(const std::string& name, std::string body, const Result& expected) {
  body.reserve(body.size() + ZAK::JSONBody::wantedPadding);
  using Decoder = Result (*)(const std::string&);
  const std::pair<std::string, Decoder> decoders[] = {
      {"kit", [](const std::string& json) { return ZAK::JSONDecoder().decode<Result>(json); }},
      {"simdjson", Bench::decodeWithSimdjson},
      {"boost-json", Bench::decodeWithBoost},
      {"rapidjson", Bench::decodeWithRapidJSON},
      {"nlohmann", Bench::decodeWithNlohmann}};
  std::vector<Side> sides;
  for (const auto& [side, decode] : decoders) {
    require(decode(body) == expected, side + " decodes something else of " + name);
    sides.emplace_back(side, [&body, work = decode] { static_cast<void>(work(body)); });
  }
  compare("decode." + name, std::move(sides));
}

template <class Source>
using Encoder = std::string (*)(const Source&);

/// The first is the kit.
template <class Source>
void compareEncoding(const std::string& name, const Source& source,
                     const std::vector<std::pair<std::string, Encoder<Source>>>& encoders) {
  const nlohmann::json expected = nlohmann::json::parse(encoders.front().second(source));
  std::vector<Side> sides;
  for (const auto& [side, encode] : encoders) {
    require(nlohmann::json::parse(encode(source)) == expected, side + " encodes something else of " + name);
    sides.emplace_back(side, [&source, work = encode] { static_cast<void>(work(source)); });
  }
  compare("encode." + name, std::move(sides));
}

/// A record or list of records both ways, and the way in once more with the keys of each object sorted.
template <class Source>
void compareBoth(const std::string& name, const Source& source, bool alsoSorted = false) {
  const std::string body = ZAK::JSONEncoder().encode(source);
  std::printf("note %s is %.1f kB\n", name.c_str(), double(body.size()) / 1e3);
  compareDecoding(name, body, source);
  if (alsoSorted) compareDecoding(name + "-sorted", nlohmann::json::parse(body).dump(), source);
  compareEncoding<Source>(name, source,
                          {{"kit", [](const Source& record) { return ZAK::JSONEncoder().encode(record); }},
                           {"boost-json", Bench::encodeWithBoost},
                           {"rapidjson", Bench::encodeWithRapidJSON},
                           {"nlohmann", Bench::encodeWithNlohmann}});
}

/// The events are values of nlohmann-json already, so only the way from there to text is compared.
std::string eventsWithNlohmann(const std::vector<ZAK::AnalyticsEventDto>& events) {
  nlohmann::json array = nlohmann::json::array();
  for (const auto& event : events) array.push_back(event.data);
  return nlohmann::json{{"events", std::move(array)}}.dump();
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<ZAK::PostDto> page = Bench::posts(100);
  if (argc > 1) {
    std::ofstream(argv[1] + std::string("/post.json")) << ZAK::JSONEncoder().encode(page[1]);
    return 0;
  }
  compareBoth("page", page, true);
  compareBoth("post", page[1]);
  compareBoth("feed", Bench::feed(100), true);
  compareBoth("fof", Bench::fofPosts(50));
  compareBoth("friends", Bench::friends(500));
  compareBoth("profile", Bench::profile());
  compareEncoding("analytics", Bench::events(100), {{"kit", ZAK::analyticsBody}, {"nlohmann", eventsWithNlohmann}});
}
