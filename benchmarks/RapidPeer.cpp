#include "Conversion.hpp"
#include "JSONPeers.hpp"
#include "Writing.hpp"

#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

namespace Bench {
namespace {

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

/// RapidJSON's way: events go straight to its writer, which checks the encoding of texts as the others do.
class RapidWriter {
 public:
  [[nodiscard]] std::string text() const { return {buffer_.GetString(), buffer_.GetSize()}; }

  void value(const std::string& text) { value(std::string_view(text)); }
  void value(std::string_view text) { writer_.String(text.data(), rapidjson::SizeType(text.size())); }
  void value(double number) { writer_.Double(number); }
  void value(std::int64_t number) { writer_.Int64(number); }
  void value(bool boolean) { writer_.Bool(boolean); }

  template <class Element>
  void value(const std::vector<Element>& elements) {
    writer_.StartArray();
    for (const Element& element : elements) value(element);
    writer_.EndArray();
  }

  template <class Source>
  void value(const Source& source) {
    if constexpr (HasFields<Source>) {
      writer_.StartObject();
      writeFields(*this, source);
      writer_.EndObject();
    } else {
      value(plain(source));
    }
  }

  template <class Member>
  RapidWriter& operator()(std::string_view key, const Member& member) {
    writer_.Key(key.data(), rapidjson::SizeType(key.size()));
    value(member);
    return *this;
  }
  template <class Member>
  RapidWriter& operator()(std::string_view key, const std::optional<Member>& member) {
    return member ? (*this)(key, *member) : *this;
  }

 private:
  rapidjson::StringBuffer buffer_;
  rapidjson::Writer<rapidjson::StringBuffer, rapidjson::UTF8<>, rapidjson::UTF8<>, rapidjson::CrtAllocator,
                    rapidjson::kWriteValidateEncodingFlag>
      writer_{buffer_};
};

}  // namespace

template <class Result>
Result decodeWithRapidJSON(const std::string& body) {
  rapidjson::Document document;
  document.Parse<rapidjson::kParseValidateEncodingFlag>(body.data(), body.size());
  if (document.HasParseError()) throw NotConvertible("not JSON");
  return Conversion<RapidJSON>::converted<Result>({&document});
}

template <class Source>
std::string encodeWithRapidJSON(const Source& source) {
  RapidWriter writer;
  writer.value(source);
  return writer.text();
}

#define INSTANTIATE(Body)                                \
  template Body decodeWithRapidJSON(const std::string&); \
  template std::string encodeWithRapidJSON(const Body&)
BENCH_BODIES(INSTANTIATE)

}  // namespace Bench
