#pragma once

#include "json/CodingFrame.hpp"

#include <zvapikit/json/Date.hpp>
#include <zvapikit/json/JSONDateStrategy.hpp>
#include <zvapikit/json/JSONErrors.hpp>
#include <zvapikit/json/JSONType.hpp>

#include <simdjson.h>

#include <functional>
#include <string>
#include <string_view>

namespace ZAK::detail {

/// What the decoder was set up with.
struct JSONDecodingContext {
  JSONDateStrategy dates;
  const std::function<Date()>& now;
};

/// Walks a parsed body into values.
///
/// It works in one of two ways. A quick reader takes each object's fields as they arrive and gives up at the first
/// fault with a bare false. An explaining reader takes them in the order of the record's table and throws at the first
/// fault, with path and reason; it serves to tell why a quick one gave up.
class JSONReader {
 public:
  JSONReader(const JSONDecodingContext& context, bool explains) noexcept : context_(context), explains_(explains) {}

  bool read(const JSONType& type, simdjson::dom::element element, void* value);
  /// The value under `key` of an object; the type says whether it may be missing.
  bool readKey(std::string_view key, const JSONType& type, simdjson::dom::element object, void* value);
  /// By the type's table, passing over its hook.
  bool readFields(const JSONType& type, simdjson::dom::element element, void* record);

  [[nodiscard]] const JSONDecodingContext& context() const noexcept { return context_; }
  [[nodiscard]] std::vector<CodingKey> path() const { return codingPath(frame_); }

 private:
  bool readInteger(const JSONType& type, simdjson::dom::element element, void* value);
  bool readDate(const JSONType& type, simdjson::dom::element element, Date& date);
  bool readRawValue(const JSONType& type, simdjson::dom::element element, void* value);
  bool readArray(const JSONType& type, simdjson::dom::element element, void* array);
  bool readMap(const JSONType& type, simdjson::dom::element element, void* map);
  bool readAsTheyArrive(const JSONType& type, simdjson::dom::object object, void* record);
  bool readInTableOrder(const JSONType& type, simdjson::dom::object object, void* record);
  bool readWithHook(const JSONType& type, simdjson::dom::element element, void* value);

  bool failMismatch(const JSONType& type, simdjson::dom::element element) const;
  bool failMissing(std::string_view key) const;
  /// `describe` makes the description, and is only asked when someone will read it.
  template <class Describe>
  bool failCorrupted(Describe describe) const;

  const JSONDecodingContext& context_;
  const CodingFrame* frame_ = nullptr;
  const bool explains_;
};

/// What stands behind a `JSONValue`.
struct JSONNode {
  JSONReader& reader;
  simdjson::dom::element element;
};

}  // namespace ZAK::detail
