#pragma once

#include "Conversion.hpp"

#include <simdjson.h>

namespace Bench {

/// simdjson's DOM, each object walked once as long as its keys come in the order in which they are asked for.
struct Simdjson {
  using Value = simdjson::dom::element;

  class Object {
   public:
    explicit Object(Value value) : object_(value.get_object()), next_(object_.begin()) {}

    std::optional<Value> find(std::string_view key) {
      for (auto at = next_; at != object_.end(); ++at) {
        if (at.key_equals(key)) return found(at);
      }
      for (auto at = object_.begin(); at != next_; ++at) {
        if (at.key_equals(key)) return found(at);
      }
      return std::nullopt;
    }

   private:
    Value found(simdjson::dom::object::iterator at) {
      const Value value = at.value();
      next_ = ++at;
      return value;
    }

    simdjson::dom::object object_;
    simdjson::dom::object::iterator next_;
  };

  static bool isNull(Value value) { return value.is_null(); }
  static std::string_view string(Value value) { return value.get_string(); }
  static double number(Value value) { return value.get_double(); }
  static std::int64_t integer(Value value) { return value.get_int64(); }
  static bool boolean(Value value) { return value.get_bool(); }
  static std::size_t size(Value array) { return array.get_array().size(); }
  template <class Visit>
  static void forEach(Value array, Visit visit) {
    const simdjson::dom::array elements = array.get_array();
    for (const Value element : elements) visit(element);
  }
};

}  // namespace Bench
