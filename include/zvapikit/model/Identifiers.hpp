#pragma once

#include <compare>
#include <string>
#include <utility>

namespace ZAK {

/// The identifier of a post. Made explicitly, so that it cannot be swapped with another identifier.
struct PostId {
  explicit PostId(std::string value_) : value(std::move(value_)) {}

  std::string value;

  auto operator<=>(const PostId&) const = default;
};

/// The identifier of a user.
struct UserId {
  explicit UserId(std::string value_) : value(std::move(value_)) {}

  std::string value;

  auto operator<=>(const UserId&) const = default;
};

/// The name under which a user is found, not their identifier.
struct Username {
  explicit Username(std::string value_) : value(std::move(value_)) {}

  std::string value;

  auto operator<=>(const Username&) const = default;
};

}  // namespace ZAK
