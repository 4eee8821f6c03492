#include <zvapikit/json/JSONErrors.hpp>

#include <utility>

namespace ZAK {
namespace {

/// `data[3].user.id`
std::string text(const std::vector<CodingKey>& path) {
  std::string result;
  for (const CodingKey& step : path) {
    if (step.index()) {
      result += '[' + std::to_string(*step.index()) + ']';
    } else {
      if (!result.empty()) result += '.';
      result += step.stringValue();
    }
  }
  return result;
}

std::string located(const std::vector<CodingKey>& path, std::string_view summary) {
  std::string result = text(path);
  if (!result.empty()) result += ": ";
  return result.append(summary);
}

}  // namespace

CodingError::CodingError(std::vector<CodingKey> path, std::string key, std::string debugDescription,
                         std::string_view summary) {
  std::string what = located(path, summary.empty() ? debugDescription : summary);
  state_ = std::make_shared<const State>(
      State{std::move(path), std::move(key), std::move(debugDescription), std::move(what)});
}

DecodingError::DecodingError(Kind kind, std::vector<CodingKey> path, std::string key, std::string debugDescription,
                             std::string_view summary)
    : CodingError(std::move(path), std::move(key), std::move(debugDescription), summary), kind_(kind) {}

DecodingError::DecodingError(Kind kind, std::vector<CodingKey> path, std::string debugDescription,
                             std::string_view summary)
    : DecodingError(kind, std::move(path), {}, std::move(debugDescription), summary) {}

DecodingError DecodingError::keyNotFound(std::string key, std::vector<CodingKey> path, std::string debugDescription,
                                         std::string_view summary) {
  return DecodingError(Kind::keyNotFound, std::move(path), std::move(key), std::move(debugDescription), summary);
}

EncodingError::EncodingError(std::vector<CodingKey> path, std::string debugDescription)
    : CodingError(std::move(path), {}, std::move(debugDescription), {}) {}

}  // namespace ZAK
