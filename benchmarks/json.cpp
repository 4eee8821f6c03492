// Decoding and encoding of posts against what a host would write by hand on top of four parsers.
//   bench_json            measures
//   bench_json DIRECTORY  writes the bodies that the transfer benchmark is served

#include "Conversion.hpp"
#include "Measure.hpp"
#include "Posts.hpp"
#include "SimdjsonPeer.hpp"

#include <zvapikit/json/JSONDecoder.hpp>
#include <zvapikit/json/JSONEncoder.hpp>
#include <zvapikit/json/JavaScriptISO8601DateFormatter.hpp>

#include <boost/json/src.hpp>
#include <nlohmann/json.hpp>

#include <cstdlib>
#include <fstream>
#include <functional>
#include <rapidjson/document.h>
#include <utility>

namespace {

using Bench::Conversion;
using Bench::NotConvertible;
using ZAK::PostDto;

constexpr int pairs = 11;

struct Nlohmann {
  /// Assignable, unlike a reference.
  struct Value {
    const nlohmann::json* json;
    const nlohmann::json* operator->() const { return json; }
  };
  struct Object {
    explicit Object(Value value_) : value(value_) {
      if (!value->is_object()) throw NotConvertible("no object");
    }
    std::optional<Value> find(std::string_view key) const {
      const auto found = value->find(key);
      return found == value->end() ? std::nullopt : std::optional(Value{&*found});
    }
    Value value;
  };
  static bool isNull(Value value) { return value->is_null(); }
  static std::string_view string(Value value) { return value->get_ref<const std::string&>(); }
  static double number(Value value) { return value->get<double>(); }
  static std::int64_t integer(Value value) {
    if (!value->is_number_integer()) throw NotConvertible("no integer");
    return value->get<std::int64_t>();
  }
  static bool boolean(Value value) { return value->get<bool>(); }
  static std::size_t size(Value value) { return value->size(); }
  template <class Visit>
  static void forEach(Value array, Visit visit) {
    if (!array->is_array()) throw NotConvertible("no array");
    for (const nlohmann::json& element : *array.json) visit(Value{&element});
  }
};

struct BoostJSON {
  struct Value {
    const boost::json::value* json;
    const boost::json::value* operator->() const { return json; }
  };
  struct Object {
    explicit Object(Value value) : object(value->as_object()) {}
    std::optional<Value> find(std::string_view key) const {
      const boost::json::value* found = object.if_contains({key.data(), key.size()});
      return found ? std::optional(Value{found}) : std::nullopt;
    }
    const boost::json::object& object;
  };
  static bool isNull(Value value) { return value->is_null(); }
  static std::string_view string(Value value) {
    const boost::json::string& text = value->as_string();
    return {text.data(), text.size()};
  }
  static double number(Value value) { return value->to_number<double>(); }
  static std::int64_t integer(Value value) { return value->to_number<std::int64_t>(); }
  static bool boolean(Value value) { return value->as_bool(); }
  static std::size_t size(Value value) { return value->as_array().size(); }
  template <class Visit>
  static void forEach(Value array, Visit visit) {
    for (const boost::json::value& element : array->as_array()) visit(Value{&element});
  }
};

struct RapidJSON {
  struct Value {
    const rapidjson::Value* json;
    const rapidjson::Value* operator->() const { return json; }
  };
  struct Object {
    explicit Object(Value value_) : value(value_) { check(value->IsObject()); }
    std::optional<Value> find(std::string_view key) const {
      const auto found = value->FindMember(rapidjson::StringRef(key.data(), rapidjson::SizeType(key.size())));
      return found == value->MemberEnd() ? std::nullopt : std::optional(Value{&found->value});
    }
    Value value;
  };
  static void check(bool holds) {
    if (!holds) throw NotConvertible("another type");
  }
  static bool isNull(Value value) { return value->IsNull(); }
  static std::string_view string(Value value) { return check(value->IsString()), stringOf(value); }
  static double number(Value value) { return check(value->IsNumber()), value->GetDouble(); }
  static std::int64_t integer(Value value) { return check(value->IsInt64()), value->GetInt64(); }
  static bool boolean(Value value) { return check(value->IsBool()), value->GetBool(); }
  static std::size_t size(Value value) { return check(value->IsArray()), value->Size(); }
  template <class Visit>
  static void forEach(Value array, Visit visit) {
    for (const rapidjson::Value& element : array->GetArray()) visit(Value{&element});
  }

 private:
  static std::string_view stringOf(Value value) { return {value->GetString(), value->GetStringLength()}; }
};

/// A page is an array; a single post is measured as an array of one.
using Decode = std::function<std::vector<PostDto>(const std::string& body)>;

std::vector<PostDto> decodeWithSimdjson(const std::string& body) {
  static simdjson::dom::parser parser;
  // The body has spare capacity, so that nothing is copied.
  return Conversion<Bench::Simdjson>::posts(parser.parse(body.data(), body.size(), false));
}

std::vector<PostDto> decodeWithBoost(const std::string& body) {
  boost::json::monotonic_resource memory;
  const boost::json::value value = boost::json::parse(boost::json::string_view(body), &memory);
  return Conversion<BoostJSON>::posts({&value});
}

std::vector<PostDto> decodeWithRapidJSON(const std::string& body) {
  rapidjson::Document document;
  document.Parse<rapidjson::kParseValidateEncodingFlag>(body.data(), body.size());
  if (document.HasParseError()) throw NotConvertible("not JSON");
  return Conversion<RapidJSON>::posts({&document});
}

std::vector<PostDto> decodeWithNlohmann(const std::string& body) {
  const nlohmann::json value = nlohmann::json::parse(body);
  return Conversion<Nlohmann>::posts({&value});
}

// What a host would write to encode posts with nlohmann-json.

nlohmann::json encoded(const ZAK::MediaDto& media) {
  return {{"url", media.url.string()}, {"width", media.width}, {"height", media.height}};
}

nlohmann::json encoded(const ZAK::PostPerson& person) {
  nlohmann::json value = {{"id", person.id}, {"username", person.username}};
  if (person.fullname) value["fullname"] = *person.fullname;
  if (person.profilePicture) value["profilePicture"] = encoded(*person.profilePicture);
  if (person.status) value["status"] = rawValue(*person.status);
  return value;
}

std::string encoded(ZAK::Date date) { return ZAK::JavaScriptISO8601DateFormatter::string(date); }

nlohmann::json encoded(const ZAK::PostQuibletDto& quiblet) {
  return {{"id", quiblet.id},
          {"user", encoded(quiblet.user)},
          {"emoji", quiblet.emoji},
          {"isInstant", quiblet.isInstant},
          {"media", encoded(quiblet.media)},
          {"postedAt", encoded(quiblet.postedAt)}};
}

nlohmann::json encoded(const ZAK::PostCommentDto& comment) {
  return {{"id", comment.id},
          {"user", encoded(comment.user)},
          {"postedAt", encoded(comment.postedAt)},
          {"content", comment.content}};
}

nlohmann::json encoded(const ZAK::PostScreenshotDto& screenshot) {
  return {{"id", screenshot.id}, {"user", encoded(screenshot.user)}};
}

template <class Element>
nlohmann::json encoded(const ZAK::SampleCollectionDto<Element>& collection) {
  nlohmann::json sample = nlohmann::json::array();
  for (const Element& element : collection.sample) sample.push_back(encoded(element));
  return {{"sample", std::move(sample)}, {"total", collection.total}};
}

nlohmann::json encoded(const PostDto& post) {
  nlohmann::json value = {{"id", post.id},
                          {"user", encoded(post.user)},
                          {"moment", {{"id", post.moment.id}, {"region", post.moment.region.value}}},
                          {"retakeCounter", post.retakeCounter},
                          {"isLate", post.isLate},
                          {"lateInSeconds", post.lateInSeconds},
                          {"primary", encoded(post.primary)},
                          {"secondary", encoded(post.secondary)},
                          {"takenAt", encoded(post.takenAt)},
                          {"createdAt", encoded(post.createdAt)}};
  if (post.visibility) {
    for (const auto visibility : *post.visibility) value["visibility"].push_back(rawValue(visibility));
  }
  if (post.location) {
    value["location"] = {{"latitude", post.location->latitude}, {"longitude", post.location->longitude}};
  }
  if (post.caption) value["caption"] = *post.caption;
  if (post.quiblets) value["quiblets"] = encoded(*post.quiblets);
  if (post.comments) value["comments"] = encoded(*post.comments);
  if (post.screenshots) value["screenshots"] = encoded(*post.screenshots);
  return value;
}

std::string encodeWithNlohmann(const std::vector<PostDto>& posts) {
  nlohmann::json value = nlohmann::json::array();
  for (const PostDto& post : posts) value.push_back(encoded(post));
  return value.dump();
}

void require(bool holds, const std::string& what) {
  if (holds) return;
  std::fprintf(stderr, "bench_json: %s\n", what.c_str());
  std::exit(1);
}

/// Seconds that one call of `work` takes.
template <class Work>
double secondsOf(const Work& work) {
  constexpr double enough = 0.03;
  const double begin = Bench::threadSeconds();
  double spent = 0;
  int calls = 0;
  for (; spent < enough; ++calls) {
    work();
    spent = Bench::threadSeconds() - begin;
  }
  return spent / calls;
}

/// Measures the sides in turn, each pair in the other direction.
void compare(const std::string& name, std::vector<std::pair<std::string, std::function<void()>>> sides) {
  for (const auto& side : sides) side.second();
  for (int pair = 0; pair < pairs; ++pair) {
    for (const auto& [side, work] : sides) Bench::report(name, pair, side, secondsOf(work));
    std::reverse(sides.begin(), sides.end());
  }
}

void compareDecoding(const std::string& name, const std::string& text, const std::vector<PostDto>& expected) {
  std::string body = text;
  body.reserve(text.size() + simdjson::SIMDJSON_PADDING);
  const std::vector<std::pair<std::string, Decode>> decoders = {
      {"kit", [](const std::string& json) { return ZAK::JSONDecoder().decode<std::vector<PostDto>>(json); }},
      {"simdjson", decodeWithSimdjson},
      {"boost-json", decodeWithBoost},
      {"rapidjson", decodeWithRapidJSON},
      {"nlohmann", decodeWithNlohmann}};
  std::vector<std::pair<std::string, std::function<void()>>> sides;
  for (const auto& [side, decode] : decoders) {
    require(decode(body) == expected, side + " decodes other posts");
    sides.emplace_back(side, [&body, work = decode] { static_cast<void>(work(body)); });
  }
  compare(name, std::move(sides));
}

void compareEncoding(const std::string& name, const std::vector<PostDto>& posts) {
  const auto encode = [&posts] { return ZAK::JSONEncoder().encode(posts); };
  require(nlohmann::json::parse(encode()) == nlohmann::json::parse(encodeWithNlohmann(posts)), "encodings differ");
  compare(name, {{"kit", [encode] { static_cast<void>(encode()); }},
                 {"nlohmann", [&posts] { static_cast<void>(encodeWithNlohmann(posts)); }}});
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<PostDto> page = Bench::posts(100);
  const std::vector<PostDto> one(page.begin() + 1, page.begin() + 2);
  const std::string pageText = ZAK::JSONEncoder().encode(page);
  if (argc > 1) {
    std::ofstream(argv[1] + std::string("/post.json")) << ZAK::JSONEncoder().encode(one.front());
    return 0;
  }
  std::printf("note the page of 100 posts is %.0f kB, the single post %.1f kB\n", double(pageText.size()) / 1e3,
              double(ZAK::JSONEncoder().encode(one).size()) / 1e3);
  compareDecoding("decode.page", pageText, page);
  compareDecoding("decode.page-sorted", nlohmann::json::parse(pageText).dump(), page);
  compareDecoding("decode.post", ZAK::JSONEncoder().encode(one), one);
  compareEncoding("encode.page", page);
  compareEncoding("encode.post", one);
}
