#include "Conversion.hpp"
#include "JSONPeers.hpp"
#include "Writing.hpp"

#include <boost/json/src.hpp>

namespace Bench {
namespace {

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

struct BoostValues {
  using Value = boost::json::value;
  using Array = boost::json::array;
  using Object = boost::json::object;
  static Value value(std::string_view text) { return boost::json::string_view(text.data(), text.size()); }
  static Value value(const std::string& text) { return value(std::string_view(text)); }
  static Value value(const auto& plain) { return plain; }
};

}  // namespace

template <class Result>
Result decodeWithBoost(const std::string& body) {
  boost::json::monotonic_resource memory;
  const boost::json::value value = boost::json::parse(boost::json::string_view(body), &memory);
  return Conversion<BoostJSON>::converted<Result>({&value});
}

template <class Source>
std::string encodeWithBoost(const Source& source) {
  return boost::json::serialize(ValueBuilder<BoostValues>::value(source));
}

#define INSTANTIATE(Body)                            \
  template Body decodeWithBoost(const std::string&); \
  template std::string encodeWithBoost(const Body&)
BENCH_BODIES(INSTANTIATE)

}  // namespace Bench
