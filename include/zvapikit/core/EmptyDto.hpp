#pragma once

#include <zvapikit/json/JSONValue.hpp>
#include <zvapikit/json/JSONWriter.hpp>

namespace ZAK {

/// Nothing of interest: decodes any well-formed JSON, and is written as `{}`.
struct EmptyDto {
  bool operator==(const EmptyDto&) const = default;
  static EmptyDto decodeJSON(const JSONValue&) { return {}; }
  void encodeJSON(JSONWriter& writer) const {
    writer.beginObject();
    writer.endObject();
  }
};

}  // namespace ZAK
