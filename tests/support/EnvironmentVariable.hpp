#pragma once

#include <optional>
#include <stdlib.h>
#include <string>

namespace ZAK::Tests {

/// Sets an environment variable for the life of a scope.
class EnvironmentVariable {
 public:
  EnvironmentVariable(const char* name, const char* value) : name_(name) {
    if (const char* before = ::getenv(name)) before_ = before;
    ::setenv(name, value, 1);
  }
  ~EnvironmentVariable() { before_ ? ::setenv(name_, before_->c_str(), 1) : ::unsetenv(name_); }
  EnvironmentVariable(const EnvironmentVariable&) = delete;
  EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

 private:
  const char* name_;
  std::optional<std::string> before_;
};

}  // namespace ZAK::Tests
