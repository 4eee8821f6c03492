#pragma once

#include <nlohmann/json.hpp>

#include <utility>

namespace ZAK {

/// One analytics event: any JSON object, made by the host and sent as it stands, keys and values unchanged.
struct AnalyticsEventDto {
  AnalyticsEventDto() = default;
  /// An event of this content.
  explicit AnalyticsEventDto(nlohmann::json data_) : data(std::move(data_)) {}

  /// Sending fails with an `EncodingError` when this is no object, or holds what JSON cannot: a number that is not
  /// finite, text that is not UTF-8, binary data, or nesting that makes the whole body deeper than 512 levels.
  nlohmann::json data = nlohmann::json::object();

  bool operator==(const AnalyticsEventDto&) const = default;
};

}  // namespace ZAK
