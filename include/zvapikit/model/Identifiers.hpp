#pragma once

#include <compare>
#include <string>
#include <utility>

namespace ZAK {

/// The identifier of a post. Made explicitly, so that it cannot be swapped with another identifier.
struct PostId {
  /// The post of this identifier.
  explicit PostId(std::string value_) : value(std::move(value_)) {}

  std::string value;  ///< as the server gave it

  /// Equality and order of the texts.
  auto operator<=>(const PostId&) const = default;
};

/// The identifier of a user.
struct UserId {
  /// The user of this identifier.
  explicit UserId(std::string value_) : value(std::move(value_)) {}

  std::string value;  ///< as the server gave it

  /// Equality and order of the texts.
  auto operator<=>(const UserId&) const = default;
};

/// The name under which a user is found, not their identifier.
struct Username {
  /// The user of this name.
  explicit Username(std::string value_) : value(std::move(value_)) {}

  std::string value;  ///< as the user chose it

  /// Equality and order of the texts.
  auto operator<=>(const Username&) const = default;
};

}  // namespace ZAK
