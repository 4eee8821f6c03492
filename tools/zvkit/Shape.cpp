#include "Shape.hpp"

#include "Binding.hpp"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace zvkit {

using ZAK::JSONField;
using ZAK::JSONType;

std::string shapeOf(const JSONType& type) {
  std::string text;
  switch (type.kind) {
    case JSONType::Kind::boolean:
      return "boolean";
    case JSONType::Kind::integer:
      return "integer";
    case JSONType::Kind::number:
      return "number";
    case JSONType::Kind::string:
      return "string";
    case JSONType::Kind::date:
      return "date";
    case JSONType::Kind::url:
      return "url";
    case JSONType::Kind::optional:
      return shapeOf(*type.element) + "?";
    case JSONType::Kind::array:
      return "[" + shapeOf(*type.element) + "]";
    case JSONType::Kind::map:
      return "{string: " + shapeOf(*type.element) + "}";
    case JSONType::Kind::rawValue:
      for (std::size_t i = 0; i < type.rawValueCount; ++i) text += (i == 0 ? "" : "|") + std::string(type.rawValues[i]);
      return text;
    case JSONType::Kind::record:
      break;
  }
  if (type.fieldCount == 0) return "any";
  for (std::size_t i = 0; i < type.fieldCount; ++i) {
    const JSONField& field = type.fields[i];
    text += (i == 0 ? "" : ", ") + std::string(field.key) + ": " + shapeOf(*field.type);
  }
  return "{" + text + "}";
}

void checkKeys(const nlohmann::json& value, const JSONType& type) {
  if (type.element && value.is_structured()) {
    if (type.kind == JSONType::Kind::optional) return checkKeys(value, *type.element);
    for (const auto& element : value) checkKeys(element, *type.element);
  }
  if (type.fieldCount == 0 || !value.is_object()) return;
  for (const auto& [key, element] : value.items()) {
    const JSONField* const end = type.fields + type.fieldCount;
    const JSONField* const field = std::find_if(type.fields, end, [&, &name = key](auto& f) { return f.key == name; });
    if (field == end) throw UsageError("has no key \"" + key + "\"");
    checkKeys(element, *field->type);
  }
}

ZAK::CursorDto ArgumentType<ZAK::CursorDto>::read(const nlohmann::json& value) {
  if (value == "start") return ZAK::CursorDto::start();
  if (value == "end") return ZAK::CursorDto::end();
  if (value.is_object() && value.size() == 1 && value.contains("nextIndex")) {
    return ZAK::CursorDto::nextIndex(value.at("nextIndex").get<std::string>());
  }
  throw UsageError("must be " + name());
}

Bytes ArgumentType<Bytes>::read(const nlohmann::json& value) {
  const auto text = value.get<std::string>();
  if (!text.starts_with('@')) throw UsageError("must be " + name());
  std::ifstream file(text.substr(1), std::ios::binary);
  std::string content{std::istreambuf_iterator<char>(file), {}};
  if (!file) throw UsageError("cannot read " + text.substr(1));
  return {std::move(content)};
}

}  // namespace zvkit
