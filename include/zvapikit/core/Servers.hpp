#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/core/Configuration.hpp>

#include <string>

namespace ZAK {

/// The base URLs of the back-end: absolute, https, without user and query. The defaults are compiled in, from the CMake
/// cache variables `ZVAPIKIT_MOBILE_PRODUCTION` and so on.
///
/// Thread safety: as a standard container.
struct ZVAPIKIT_API Servers {
  std::string mobileProduction = compiledIn().mobileProduction;  ///< mobile API, `Environment::production`
  std::string mobileSandbox = compiledIn().mobileSandbox;        ///< mobile API, `Environment::sandbox`
  std::string authProduction = compiledIn().authProduction;      ///< authentication server, `Environment::production`
  std::string authSandbox = compiledIn().authSandbox;            ///< authentication server, `Environment::sandbox`

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
