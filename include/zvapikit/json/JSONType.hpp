#pragma once

#include <zvapikit/json/Date.hpp>
#include <zvapikit/json/NullEncodable.hpp>
#include <zvapikit/json/RawValue.hpp>
#include <zvapikit/json/URL.hpp>

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace ZAK {

class JSONValue;
class JSONWriter;
struct JSONType;

/// One row of a record's field table: a JSON key and the member that holds its value.
///
/// A record states its fields once, in the order in which they are written and errors are looked for:
///
///     struct MediaDto {
///       URL url;
///       double width = 0;
///       static constexpr auto jsonFields() {
///         return std::array{JSONField::of<&MediaDto::url>("url"), JSONField::of<&MediaDto::width>("width")};
///       }
///     };
///
/// A member of type `std::optional` or `NullEncodable` may be missing or null; every other key is required. A record
/// has at most 64 fields; one that contains itself has hooks in place of a table.
///
/// Thread safety: as a standard container.
struct JSONField {
  std::string_view key;           ///< as it stands in JSON
  const JSONType* type;           ///< what the member is
  void* (*member)(void* record);  ///< the member of a record
  bool required;                  ///< false for a member that may be missing or null

  /// The row of a member, a constant: `JSONField::of<&MediaDto::url>("url")`.
  template <auto Member>
  static constexpr JSONField of(std::string_view key);
};

/// What decoder and encoder know of a C++ type, with the type itself forgotten. One constant for each type, made by
/// `jsonType<T>()` only. A shared library and its host may each have their own of a type; that of `EmptyDto` is one.
/// What it holds is the codec's own business.
///
/// Thread safety: constant.
struct JSONType {
  /// \cond
  enum class Kind : unsigned char {
    boolean,
    integer,
    number,
    string,
    date,
    url,
    optional,
    array,
    map,
    rawValue,
    record
  };

  Kind kind;
  /// Optional that is written as null when empty.
  bool writesNull = false;
  /// Enumeration that reads an unknown text as its last case.
  bool lastByDefault = false;
  /// Bytes of an integer, or of an element.
  std::size_t size = 0;

  /// Type of the elements of an optional, array or map.
  const JSONType* element = nullptr;
  /// Adds an element to an optional, array or map and yields it. A map yields null for a key that it has.
  void* (*emplace)(void* container, std::string_view key) = nullptr;
  /// Empties an array or map and, where that is possible, makes room for `count` elements.
  void (*clear)(void* container, std::size_t count) = nullptr;
  /// The element of an optional; null when it is empty.
  const void* (*content)(const void* optional) = nullptr;
  /// Hands each element of an array or map to `visit`.
  void (*forEach)(const void* container, void* context,
                  void (*visit)(void* context, std::string_view key, const void* element)) = nullptr;

  /// Of an enumeration: its name, its texts in order, and access by number.
  std::string_view name = {};
  const std::string_view* rawValues = nullptr;
  std::size_t rawValueCount = 0;
  void (*setCase)(void* value, std::size_t index) = nullptr;
  std::size_t (*caseIndex)(const void* value) = nullptr;

  /// Of a record: its table, and hooks that replace the table's way of reading or writing.
  const JSONField* fields = nullptr;
  std::size_t fieldCount = 0;
  /// A bit for each required field, the first field lowest.
  std::uint64_t required = 0;
  void (*decode)(void* record, const JSONValue& value) = nullptr;
  void (*encode)(const void* record, JSONWriter& writer) = nullptr;
  /// \endcond
};

/// A type with a field table.
template <class T>
concept JSONRecord = requires {
  T::jsonFields();
};

/// A type that reads itself: `static T decodeJSON(const JSONValue&)`. With a field table beside it, the table still
/// serves for writing.
template <class T>
concept JSONSelfDecoding = requires(const JSONValue& value) {
  { T::decodeJSON(value) } -> std::same_as<T>;
};

/// A type that writes itself: `void encodeJSON(JSONWriter&) const`.
template <class T>
concept JSONSelfEncoding = requires(const T& value, JSONWriter& writer) {
  value.encodeJSON(writer);
};

namespace detail {

template <class T>
inline constexpr auto jsonFieldTable = T::jsonFields();

template <class E>
constexpr auto rawValueTexts() {
  std::array<std::string_view, RawValues<E>::cases.size()> texts;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    texts[i] = RawValues<E>::cases[i].rawValue;
    if (static_cast<std::size_t>(RawValues<E>::cases[i].value) != i) throw "cases out of order";
  }
  return texts;
}

template <class E>
inline constexpr auto rawValueTable = rawValueTexts<E>();

template <class T>
struct JSONTypeOf;

}  // namespace detail

/// The descriptor of a type: bool, integers of 32 and 64 bits, double, std::string, Date, URL, enumerations with raw
/// values, records and self-coding types, and std::optional, NullEncodable, std::vector and std::map with string keys
/// of all these.
template <class T>
constexpr const JSONType& jsonType() noexcept {
  return detail::JSONTypeOf<T>::value;
}

namespace detail {

template <class T>
consteval JSONType scalarType() {
  using Kind = JSONType::Kind;
  if constexpr (std::same_as<T, bool>) {
    return {.kind = Kind::boolean};
  } else if constexpr (std::signed_integral<T> && (sizeof(T) == 4 || sizeof(T) == 8)) {
    return {.kind = Kind::integer, .size = sizeof(T)};
  } else if constexpr (std::same_as<T, double>) {
    return {.kind = Kind::number};
  } else if constexpr (std::same_as<T, std::string>) {
    return {.kind = Kind::string};
  } else if constexpr (std::same_as<T, Date>) {
    return {.kind = Kind::date};
  } else if constexpr (std::same_as<T, URL>) {
    return {.kind = Kind::url};
  } else {
    static_assert(RawRepresentable<T>, "no JSON form: give the type a jsonFields() table, hooks or raw values");
    return {.kind = Kind::rawValue,
            .lastByDefault = CodableLastByDefault<T>,
            .name = RawValues<T>::name,
            .rawValues = rawValueTable<T>.data(),
            .rawValueCount = rawValueTable<T>.size(),
            .setCase = [](void* value, std::size_t index) { *static_cast<T*>(value) = static_cast<T>(index); },
            .caseIndex = [](const void* value) { return static_cast<std::size_t>(*static_cast<const T*>(value)); }};
  }
}

template <class T>
consteval JSONType recordType() {
  JSONType type{.kind = JSONType::Kind::record};
  if constexpr (JSONRecord<T>) {
    static_assert(jsonFieldTable<T>.size() <= 64, "a record has at most 64 fields");
    type.fields = jsonFieldTable<T>.data();
    type.fieldCount = jsonFieldTable<T>.size();
    for (std::size_t i = 0; i < type.fieldCount; ++i) {
      if (jsonFieldTable<T>[i].required) type.required |= std::uint64_t{1} << i;
    }
  }
  if constexpr (JSONSelfDecoding<T>) {
    type.decode = [](void* record, const JSONValue& value) { *static_cast<T*>(record) = T::decodeJSON(value); };
  }
  if constexpr (JSONSelfEncoding<T>) {
    type.encode = [](const void* record, JSONWriter& writer) { static_cast<const T*>(record)->encodeJSON(writer); };
  }
  return type;
}

template <class T>
consteval JSONType plainType() {
  if constexpr (JSONRecord<T> || (JSONSelfDecoding<T> && JSONSelfEncoding<T>)) {
    return recordType<T>();
  } else {
    return scalarType<T>();
  }
}

template <class T>
struct JSONTypeOf {
  static constexpr JSONType value = plainType<T>();
};

template <class T>
struct JSONTypeOf<std::optional<T>> {
  static constexpr JSONType value{.kind = JSONType::Kind::optional,
                                  .element = &JSONTypeOf<T>::value,
                                  .emplace = [](void* optional, std::string_view) -> void* {
                                    return &static_cast<std::optional<T>*>(optional)->emplace();
                                  },
                                  .content = [](const void* optional) -> const void* {
                                    const auto& value = *static_cast<const std::optional<T>*>(optional);
                                    return value ? &*value : nullptr;
                                  }};
};

template <class T>
struct JSONTypeOf<NullEncodable<T>> {
  static constexpr JSONType value{.kind = JSONType::Kind::optional,
                                  .writesNull = true,
                                  .element = &JSONTypeOf<T>::value,
                                  .emplace = [](void* optional, std::string_view) -> void* {
                                    return &static_cast<NullEncodable<T>*>(optional)->wrappedValue.emplace();
                                  },
                                  .content = [](const void* optional) -> const void* {
                                    const auto& value = static_cast<const NullEncodable<T>*>(optional)->wrappedValue;
                                    return value ? &*value : nullptr;
                                  }};
};

template <class T>
struct JSONTypeOf<std::vector<T>> {
  static_assert(!std::same_as<T, bool>, "std::vector<bool> holds no bool objects to decode into");
  static constexpr JSONType value{
      .kind = JSONType::Kind::array,
      .size = sizeof(T),
      .element = &JSONTypeOf<T>::value,
      .emplace = [](void* array, std::string_view) -> void* {
        return &static_cast<std::vector<T>*>(array)->emplace_back();
      },
      .clear =
          [](void* array, std::size_t count) {
            static_cast<std::vector<T>*>(array)->clear();
            static_cast<std::vector<T>*>(array)->reserve(count);
          },
      .forEach =
          [](const void* array, void* context, void (*visit)(void*, std::string_view, const void*)) {
            for (const T& element : *static_cast<const std::vector<T>*>(array)) visit(context, {}, &element);
          }};
};

template <class T>
struct JSONTypeOf<std::map<std::string, T>> {
  static constexpr JSONType value{
      .kind = JSONType::Kind::map,
      .element = &JSONTypeOf<T>::value,
      .emplace = [](void* map, std::string_view key) -> void* {
        auto [position, added] = static_cast<std::map<std::string, T>*>(map)->try_emplace(std::string(key));
        return added ? &position->second : nullptr;
      },
      .clear = [](void* map, std::size_t) { static_cast<std::map<std::string, T>*>(map)->clear(); },
      .forEach =
          [](const void* map, void* context, void (*visit)(void*, std::string_view, const void*)) {
            for (const auto& [key, element] : *static_cast<const std::map<std::string, T>*>(map)) {
              visit(context, key, &element);
            }
          }};
};

template <class T>
inline constexpr bool mayBeMissing = false;
template <class T>
inline constexpr bool mayBeMissing<std::optional<T>> = true;
template <class T>
inline constexpr bool mayBeMissing<NullEncodable<T>> = true;

template <class Record, class Value>
Record recordOf(Value Record::*);
template <class Record, class Value>
Value valueOf(Value Record::*);

}  // namespace detail

template <auto Member>
constexpr JSONField JSONField::of(std::string_view key) {
  using Record = decltype(detail::recordOf(Member));
  using Value = decltype(detail::valueOf(Member));
  return {key, &detail::JSONTypeOf<Value>::value,
          [](void* record) -> void* { return &(static_cast<Record*>(record)->*Member); }, !detail::mayBeMissing<Value>};
}

}  // namespace ZAK
