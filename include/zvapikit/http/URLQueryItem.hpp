#pragma once

#include <optional>
#include <string>
#include <utility>

namespace ZAK {

/// One `name=value` pair of a query. An absent value is sent as the bare name, an empty one as `name=`.
struct URLQueryItem {
  URLQueryItem() = default;
  /// All fields, in their order.
  URLQueryItem(std::string name_, std::optional<std::string> value_)
      : name(std::move(name_)), value(std::move(value_)) {}

  std::string name;                  ///< before it is percent-encoded
  std::optional<std::string> value;  ///< before it is percent-encoded

  bool operator==(const URLQueryItem&) const = default;
};

}  // namespace ZAK
