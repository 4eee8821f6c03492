#include "Conversion.hpp"
#include "JSONPeers.hpp"
#include "Writing.hpp"

#include <nlohmann/json.hpp>

namespace Bench {
namespace {

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

struct NlohmannValues {
  using Value = nlohmann::json;
  using Array = Value::array_t;
  using Object = Value::object_t;
  static Value value(const auto& plain) { return plain; }
};

}  // namespace

template <class Result>
Result decodeWithNlohmann(const std::string& body) {
  const nlohmann::json value = nlohmann::json::parse(body);
  return Conversion<Nlohmann>::converted<Result>({&value});
}

template <class Source>
std::string encodeWithNlohmann(const Source& source) {
  return ValueBuilder<NlohmannValues>::value(source).dump();
}

#define INSTANTIATE(Body)                               \
  template Body decodeWithNlohmann(const std::string&); \
  template std::string encodeWithNlohmann(const Body&)
BENCH_BODIES(INSTANTIATE)

}  // namespace Bench
