#pragma once

#include <array>

#include <zvapikit/json/RawValue.hpp>

namespace ZAK {

/// Which of the back-end's environments a client talks to.
struct Configuration {
  enum class Environment { sandbox, production };

  Environment environment = Environment::production;

  bool operator==(const Configuration&) const = default;
};

}  // namespace ZAK
