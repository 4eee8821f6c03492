#pragma once

#include "auth/TokenStorage.hpp"

#include <zvapikit/core/Configuration.hpp>
#include <zvapikit/core/DelegateReference.hpp>
#include <zvapikit/core/LoggerDelegate.hpp>

#include <memory>
#include <string>

namespace ZAK {

class Keychain;

/// Keeps the token in the keychain, one item an environment. Failures of the keychain are logged and read as no token.
class KeychainTokenStorage final : public TokenStorage {
 public:
  KeychainTokenStorage(Configuration::Environment environment, std::shared_ptr<Keychain> keychain,
                       DelegateReference<LoggerDelegate> logger);

  std::optional<TokenDto> get() override;
  void set(const std::optional<TokenDto>& token) override;

 private:
  void removeSilently() noexcept;
  void report(const std::exception_ptr& failure) const noexcept;

  std::string key_;
  std::shared_ptr<Keychain> keychain_;
  DelegateReference<LoggerDelegate> logger_;
};

}  // namespace ZAK
