#include "json/JSONReader.hpp"

#include "json/ReferenceDate.hpp"

#include <zvapikit/json/JSONValue.hpp>
#include <zvapikit/json/JavaScriptISO8601DateFormatter.hpp>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace ZAK::detail {
namespace {

using simdjson::dom::element;
using simdjson::dom::element_type;
using Kind = JSONType::Kind;

/// How a JSON type is called, in the platform's words and in one word.
struct Words {
  std::string_view long_;
  std::string_view short_;
};

Words found(element value) {
  switch (value.type()) {
    case element_type::ARRAY:
      return {"an array", "array"};
    case element_type::OBJECT:
      return {"a dictionary", "object"};
    case element_type::STRING:
      return {"a string", "string"};
    case element_type::BOOL:
      return {"bool", "boolean"};
    case element_type::NULL_VALUE:
      return {"null", "null"};
    default:
      return {"number", "number"};
  }
}

Words expected(const JSONType& type, JSONDateStrategy dates) {
  switch (type.kind) {
    case Kind::boolean:
      return {"Bool", "boolean"};
    case Kind::integer:
      return {"Int", "integer"};
    case Kind::number:
      return {"Double", "number"};
    case Kind::array:
      return {"Array<Any>", "array"};
    case Kind::map:
    case Kind::record:
      return {"Dictionary<String, Any>", "object"};
    case Kind::optional:
      return expected(*type.element, dates);
    case Kind::date:
      if (dates == JSONDateStrategy::secondsSince2001) return {"Double", "number"};
      [[fallthrough]];
    default:
      return {"String", "string"};
  }
}

/// Compares keys of a few bytes without a call, which is what most of the work on an object's fields would else be.
bool equal(std::string_view left, std::string_view right) noexcept {
  if (left.size() != right.size()) return false;
  const std::size_t size = left.size();
  const auto differ = [&]<class Word>(Word, std::size_t position) {
    Word a, b;
    std::memcpy(&a, left.data() + position, sizeof a);
    std::memcpy(&b, right.data() + position, sizeof b);
    return a != b;
  };
  // The last word overlaps the one before it where the size is no multiple.
  if (size >= 8) {
    for (std::size_t i = 0; i + 8 < size; i += 8) {
      if (differ(std::uint64_t{}, i)) return false;
    }
    return !differ(std::uint64_t{}, size - 8);
  }
  if (size >= 4) return !differ(std::uint32_t{}, 0) && !differ(std::uint32_t{}, size - 4);
  return size == 0 ||
         (left.front() == right.front() && left[size / 2] == right[size / 2] && left.back() == right.back());
}

template <class Integer>
bool store(std::int64_t number, void* value) noexcept {
  const auto narrowed = static_cast<Integer>(number);
  std::memcpy(value, &narrowed, sizeof narrowed);
  return narrowed == number;
}

std::string numberText(element number) { return simdjson::minify(number); }

}  // namespace

bool JSONReader::failMismatch(const JSONType& type, element value) const {
  if (!explains_) return false;
  const Words want = expected(type, context_.dates);
  const Words have = found(value);
  const std::string summary = "expected " + std::string(want.short_) + ", found " + std::string(have.short_);
  if (value.is_null()) {
    throw DecodingError(DecodingError::Kind::valueNotFound, path(),
                        "Cannot get value of type " + std::string(want.long_) + " -- found null value instead",
                        summary);
  }
  throw DecodingError(
      DecodingError::Kind::typeMismatch, path(),
      "Expected to decode " + std::string(want.long_) + " but found " + std::string(have.long_) + " instead.", summary);
}

bool JSONReader::failMissing(std::string_view key) const {
  if (!explains_) return false;
  const std::string name(key);
  throw DecodingError::keyNotFound(name, path(), "No value associated with key " + name + " (\"" + name + "\").",
                                   "missing key " + name);
}

template <class Describe>
bool JSONReader::failCorrupted(Describe describe) const {
  if (!explains_) return false;
  throw DecodingError(DecodingError::Kind::dataCorrupted, path(), describe());
}

bool JSONReader::read(const JSONType& type, element value, void* out) {
  switch (type.kind) {
    case Kind::string: {
      std::string_view text;
      if (value.get_string().get(text)) return failMismatch(type, value);
      static_cast<std::string*>(out)->assign(text);
      return true;
    }
    case Kind::url: {
      std::string_view text;
      if (value.get_string().get(text)) return failMismatch(type, value);
      std::optional<URL> url = URL::parse(text);
      if (!url) return failCorrupted([] { return "Invalid URL string."; });
      *static_cast<URL*>(out) = std::move(*url);
      return true;
    }
    case Kind::boolean:
      if (value.get_bool().get(*static_cast<bool*>(out))) return failMismatch(type, value);
      return true;
    case Kind::number:
      if (value.get_double().get(*static_cast<double*>(out))) return failMismatch(type, value);
      return true;
    case Kind::optional:
      if (value.is_null()) return true;
      return read(*type.element, value, type.emplace(out, {}));
    case Kind::integer:
      return readInteger(type, value, out);
    case Kind::date:
      return readDate(type, value, *static_cast<Date*>(out));
    case Kind::rawValue:
      return readRawValue(type, value, out);
    case Kind::array:
      return readArray(type, value, out);
    case Kind::map:
      return readMap(type, value, out);
    case Kind::record:
      return type.decode ? readWithHook(type, value, out) : readFields(type, value, out);
  }
  return false;
}

bool JSONReader::readInteger(const JSONType& type, element value, void* out) {
  std::int64_t number = 0;
  bool fits = !value.get_int64().get(number);
  if (!fits && !value.is_number()) return failMismatch(type, value);
  if (value.type() == element_type::DOUBLE) {
    constexpr double limit = 9223372036854775808.0;  // 2^63
    double fraction;
    fits =
        !value.get_double().get(fraction) && fraction >= -limit && fraction < limit && std::trunc(fraction) == fraction;
    if (fits) number = static_cast<std::int64_t>(fraction);
  }
  if (fits) fits = type.size == 4 ? store<std::int32_t>(number, out) : store<std::int64_t>(number, out);
  if (fits) return true;
  return failCorrupted([&] { return "Parsed JSON number <" + numberText(value) + "> does not fit in Int."; });
}

bool JSONReader::readDate(const JSONType& type, element value, Date& date) {
  std::optional<Date> result;
  if (context_.dates == JSONDateStrategy::secondsSince2001) {
    double seconds;
    if (value.get_double().get(seconds)) return failMismatch(type, value);
    result = dateOfSecondsSince2001(seconds);
    if (!result) return failCorrupted([] { return "Number of seconds outside the range of dates."; });
  } else {
    std::string_view text;
    if (value.get_string().get(text)) return failMismatch(type, value);
    result = JavaScriptISO8601DateFormatter::date(text);
    if (!result) return failCorrupted([] { return "Expected date string to be JavaScript-ISO8601-formatted."; });
  }
  date = *result;
  return true;
}

bool JSONReader::readRawValue(const JSONType& type, element value, void* out) {
  std::string_view text;
  if (value.get_string().get(text)) return failMismatch(type, value);
  const std::string_view* const end = type.rawValues + type.rawValueCount;
  const std::string_view* match = std::find(type.rawValues, end, text);
  if (match == end && type.lastByDefault) --match;
  if (match == end) {
    return failCorrupted([&] {
      std::size_t quoted = std::min<std::size_t>(text.size(), 64);
      while (quoted < text.size() && (text[quoted] & 0xC0) == 0x80) --quoted;  // not in the middle of a character
      return "Cannot initialize " + std::string(type.name) + " from invalid String value " +
             std::string(text.substr(0, quoted));
    });
  }
  type.setCase(out, static_cast<std::size_t>(match - type.rawValues));
  return true;
}

bool JSONReader::readArray(const JSONType& type, element value, void* array) {
  simdjson::dom::array elements;
  if (value.get_array().get(elements)) return failMismatch(type, value);
  // Room is made for what a body may honestly hold; beyond that the array grows as elements turn out to be good.
  constexpr std::size_t reservedBytes = 1 << 20;
  type.clear(array, std::min(elements.size(), reservedBytes / type.size));
  CodingFrameScope frame(frame_, true);
  std::size_t index = 0;
  for (const element item : elements) {
    frame.enter(index++);
    if (!read(*type.element, item, type.emplace(array, {}))) return false;
  }
  return true;
}

bool JSONReader::readMap(const JSONType& type, element value, void* map) {
  simdjson::dom::object object;
  if (value.get_object().get(object)) return failMismatch(type, value);
  type.clear(map, 0);
  CodingFrameScope frame(frame_, false);
  for (const auto& [key, item] : object) {
    frame.enter(key);
    void* const place = type.emplace(map, key);
    if (place && !read(*type.element, item, place)) return false;
  }
  return true;
}

bool JSONReader::readFields(const JSONType& type, element value, void* record) {
  simdjson::dom::object object;
  if (value.get_object().get(object)) return failMismatch(type, value);
  return explains_ ? readInTableOrder(type, object, record) : readAsTheyArrive(type, object, record);
}

bool JSONReader::readAsTheyArrive(const JSONType& type, simdjson::dom::object object, void* record) {
  const JSONField* const fields = type.fields;
  const std::size_t count = type.fieldCount;
  std::uint64_t seen = 0;
  std::size_t guess = 0;
  for (const auto& [key, value] : object) {
    std::size_t i = guess;
    std::size_t tried = 0;
    for (; tried < count; ++tried, ++i) {
      if (i == count) i = 0;
      if (equal(fields[i].key, key)) break;
    }
    if (tried == count) continue;
    guess = i + 1;
    const std::uint64_t bit = std::uint64_t{1} << i;
    if (seen & bit) continue;
    seen |= bit;
    if (!read(*fields[i].type, value, fields[i].member(record))) return false;
  }
  return (type.required & ~seen) == 0;
}

bool JSONReader::readInTableOrder(const JSONType& type, simdjson::dom::object object, void* record) {
  for (std::size_t i = 0; i < type.fieldCount; ++i) {
    const JSONField& field = type.fields[i];
    element value;
    if (object.at_key(field.key).get(value)) {
      if (field.required) return failMissing(field.key);
      continue;
    }
    CodingFrameScope frame(frame_, false);
    frame.enter(field.key);
    if (!read(*field.type, value, field.member(record))) return false;
  }
  return true;
}

bool JSONReader::readKey(std::string_view key, const JSONType& type, element value, void* out) {
  simdjson::dom::object object;
  if (value.get_object().get(object)) return failMismatch(JSONType{.kind = Kind::record}, value);
  element member;
  if (object.at_key(key).get(member)) return type.kind == Kind::optional || failMissing(key);
  CodingFrameScope frame(frame_, false);
  frame.enter(key);
  return read(type, member, out);
}

bool JSONReader::readWithHook(const JSONType& type, element value, void* out) {
  const JSONNode node{*this, value};
  if (explains_) {
    type.decode(out, JSONValue(node));
    return true;
  }
  try {
    type.decode(out, JSONValue(node));
    return true;
  } catch (const DecodingError&) {
    return false;
  }
}

}  // namespace ZAK::detail

namespace ZAK {
namespace {

/// Ends the hook; the explaining reader, which comes next, throws the real error itself.
void require(bool success) {
  if (!success) throw DecodingError(DecodingError::Kind::dataCorrupted, {}, "Cannot be read.");
}

}  // namespace

Date JSONValue::now() const {
  const auto& now = node_->reader.context().now;
  return now ? now() : std::chrono::floor<Date::duration>(std::chrono::system_clock::now());
}

void JSONValue::fail(std::string debugDescription, DecodingError::Kind kind) const {
  throw DecodingError(kind, node_->reader.path(), std::move(debugDescription));
}

void JSONValue::read(const JSONType& type, void* result) const {
  require(node_->reader.read(type, node_->element, result));
}

void JSONValue::read(std::string_view key, const JSONType& type, void* result) const {
  require(node_->reader.readKey(key, type, node_->element, result));
}

void JSONValue::readFields(const JSONType& type, void* result) const {
  require(node_->reader.readFields(type, node_->element, result));
}

}  // namespace ZAK
