#pragma once

#include "Fields.hpp"

#include <zvapikit/json/JavaScriptISO8601DateFormatter.hpp>

#include <optional>
#include <type_traits>
#include <utility>
#include <vector>

namespace Bench {

/// A member as JSON knows it: itself, or its text.
template <class Member>
decltype(auto) plain(const Member& member) {
  if constexpr (std::is_same_v<Member, ZAK::URL>) {
    return member.string();
  } else if constexpr (std::is_same_v<Member, ZAK::Date>) {
    return ZAK::JavaScriptISO8601DateFormatter::string(member);
  } else if constexpr (std::is_same_v<Member, ZAK::RegionCodeDto>) {
    return (member.value);
  } else if constexpr (ZAK::RawRepresentable<Member>) {
    return rawValue(member);
  } else {
    return (member);
  }
}

/// Hands all fields of a record to `write`.
template <class Writer, class Record>
void writeFields(Writer& write, const Record& record) {
  fields(write, const_cast<Record&>(record));  // a list of fields serves readers too; nothing is written through it
}

/// nlohmann-json's and Boost.JSON's way: a value is built, `Library` telling of what, and then written.
template <class Library>
class ValueBuilder {
 public:
  using Value = typename Library::Value;

  template <class Source>
  static Value value(const Source& source) {
    if constexpr (HasFields<Source>) {
      ValueBuilder builder;
      writeFields(builder, source);
      return std::move(builder.object_);
    } else {
      return Library::value(plain(source));
    }
  }

  template <class Element>
  static Value value(const std::vector<Element>& elements) {
    typename Library::Array array;
    array.reserve(elements.size());
    for (const Element& element : elements) array.push_back(value(element));
    return array;
  }

  template <class Member>
  ValueBuilder& operator()(const char* key, const Member& member) {
    object_[key] = value(member);
    return *this;
  }
  template <class Member>
  ValueBuilder& operator()(const char* key, const std::optional<Member>& member) {
    return member ? (*this)(key, *member) : *this;
  }

 private:
  typename Library::Object object_;
};

}  // namespace Bench
