#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/json/JSONType.hpp>
#include <zvapikit/json/JSONValue.hpp>
#include <zvapikit/json/JSONWriter.hpp>

namespace ZAK {

/// Nothing of interest: decodes any well-formed JSON, as a call's result also an answer without a body, and is written
/// as `{}`.
struct EmptyDto {
  bool operator==(const EmptyDto&) const = default;
  static EmptyDto decodeJSON(const JSONValue&) { return {}; }
  void encodeJSON(JSONWriter& writer) const {
    writer.beginObject();
    writer.endObject();
  }
};

namespace detail {

/// "Nothing is to be decoded" is told by this address, so library and host must share one object, whatever they are
/// linked as.
template <>
struct JSONTypeOf<EmptyDto> {
  ZVAPIKIT_API static const JSONType value;
};

}  // namespace detail

}  // namespace ZAK
