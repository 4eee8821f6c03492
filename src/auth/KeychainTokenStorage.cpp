#include "auth/KeychainTokenStorage.hpp"

#include "core/Log.hpp"

#include <zvapikit/json/JSONDecoder.hpp>
#include <zvapikit/json/JSONEncoder.hpp>
#include <zvapikit/json/JSONErrors.hpp>
#include <zvapikit/keychain/Keychain.hpp>
#include <zvapikit/keychain/KeychainError.hpp>

namespace ZAK {

KeychainTokenStorage::KeychainTokenStorage(Configuration::Environment environment, std::shared_ptr<Keychain> keychain,
                                           DelegateReference<LoggerDelegate> logger)
    : key_("zak_token_" + std::string(rawValue(environment)) + "_store_key"),
      keychain_(std::move(keychain)),
      logger_(std::move(logger)) {}

}  // namespace ZAK
