#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/core/Configuration.hpp>

#include <string>

namespace ZAK {

/// The base URLs of the back-end. The defaults are compiled in (see the deployment settings of the build).
struct ZVAPIKIT_API Servers {
  std::string mobileProduction = compiledIn().mobileProduction;
  std::string mobileSandbox = compiledIn().mobileSandbox;
  std::string authProduction = compiledIn().authProduction;
  std::string authSandbox = compiledIn().authSandbox;

  /// Base of the mobile API in an environment.
  [[nodiscard]] const std::string& mobile(Configuration::Environment environment) const noexcept {
    return environment == Configuration::Environment::sandbox ? mobileSandbox : mobileProduction;
  }
  /// Base of the authentication server in an environment.
  [[nodiscard]] const std::string& auth(Configuration::Environment environment) const noexcept {
    return environment == Configuration::Environment::sandbox ? authSandbox : authProduction;
  }

 private:
  struct CompiledIn {
    const char* mobileProduction;
    const char* mobileSandbox;
    const char* authProduction;
    const char* authSandbox;
  };
  static const CompiledIn& compiledIn() noexcept;
};

}  // namespace ZAK
