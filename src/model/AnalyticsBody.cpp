#include "model/AnalyticsBody.hpp"

#include "json/NestingDepth.hpp"

#include <zvapikit/json/JSONErrors.hpp>

#include <cmath>
#include <cstddef>
#include <string_view>

namespace ZAK {
namespace {

using nlohmann::json;
using Path = std::vector<CodingKey>;

/// Finds what the serialiser would write as null, or not survive.
void check(const json& value, Path& path) {
  if (value.is_structured() && path.size() >= detail::maximumNesting)
    throw EncodingError(path, "Nested too deeply to be encoded.");
  if (value.is_number_float() && !std::isfinite(value.get<double>()))
    throw EncodingError(path, "A number that is not finite cannot be encoded.");
  if (value.is_binary() || value.is_discarded()) throw EncodingError(path, "Binary data cannot be encoded.");
  if (value.is_object()) {
    for (const auto& [key, element] : value.items()) {
      path.emplace_back(key);
      check(element, path);
      path.pop_back();
    }
  } else if (value.is_array()) {
    for (std::size_t i = 0; i < value.size(); ++i) {
      path.emplace_back(i);
      check(value[i], path);
      path.pop_back();
    }
  }
}

std::string encoded(const json& event, Path path) {
  if (!event.is_object()) throw EncodingError(path, "An event must be an object.");
  check(event, path);
  try {
    return event.dump();
  } catch (const json::type_error&) {
    throw EncodingError(path, "Text that is not UTF-8 cannot be encoded.");
  }
}

}  // namespace

std::string analyticsBody(const std::vector<AnalyticsEventDto>& events) {
  std::string body = R"({"events":[)";
  for (std::size_t i = 0; i < events.size(); ++i) {
    if (i > 0) body += ',';
    body += encoded(events[i].data, {"events", CodingKey(i)});
  }
  return body += "]}";
}

}  // namespace ZAK
