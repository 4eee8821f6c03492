#pragma once

#include <zvapikit/json/JSONValue.hpp>
#include <zvapikit/json/JSONWriter.hpp>

#include <string>
#include <utility>

namespace ZAK {

/// A region's code. In JSON it is a bare string, of any form.
struct RegionCodeDto {
  RegionCodeDto() = default;
  /// The region of this code; converts from a text.
  RegionCodeDto(std::string value_) : value(std::move(value_)) {}  // NOLINT: meant to convert
  /// The same, from a literal.
  RegionCodeDto(const char* value_) : value(value_) {}  // NOLINT: meant to convert

  std::string value;  ///< for example `europe-west`

  bool operator==(const RegionCodeDto&) const = default;
  static RegionCodeDto decodeJSON(const JSONValue& json) { return json.as<std::string>(); }
  void encodeJSON(JSONWriter& writer) const { writer.value(value); }
};

}  // namespace ZAK
