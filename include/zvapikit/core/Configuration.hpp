#pragma once

#include <zvapikit/json/RawValue.hpp>

#include <array>
#include <string_view>

namespace ZAK {

/// Which of the back-end's environments a client talks to.
struct Configuration {
  /// Each has servers, users and tokens of its own.
  enum class Environment {
    sandbox,    ///< for trying things out
    production  ///< the real one
  };

  Environment environment = Environment::production;  ///< the one that is meant

  bool operator==(const Configuration&) const = default;
};

template <>
struct RawValues<Configuration::Environment> {
  static constexpr std::string_view name = "Environment";
  static constexpr std::array cases{
      RawCase{Configuration::Environment::sandbox, "sandbox"},
      RawCase{Configuration::Environment::production, "production"},
  };
};

}  // namespace ZAK
