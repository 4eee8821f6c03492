#include "auth/KeychainTokenStorage.hpp"

#include "core/Log.hpp"

#include <zvapikit/json/JSONDecoder.hpp>
#include <zvapikit/json/JSONEncoder.hpp>
#include <zvapikit/json/JSONErrors.hpp>
#include <zvapikit/keychain/Keychain.hpp>

namespace ZAK {
namespace {

// Stored dates are a private matter of the kit's and keep the whole precision.
constexpr JSONDateStrategy storedDates = JSONDateStrategy::secondsSince2001;
// An item is found whether or not it was written as synchronizable.
constexpr KeychainOptions anySynchronizable{.ignoreSynchronizable = true};

}  // namespace

KeychainTokenStorage::KeychainTokenStorage(Configuration::Environment environment, std::shared_ptr<Keychain> keychain,
                                           DelegateReference<LoggerDelegate> logger)
    : key_("zak_token_" + std::string(rawValue(environment)) + "_store_key"),
      keychain_(std::move(keychain)),
      logger_(std::move(logger)) {}

std::optional<TokenDto> KeychainTokenStorage::get() {
  std::optional<std::string> data;
  try {
    data = keychain_->data(key_, anySynchronizable);
  } catch (...) {
    report(std::current_exception());
  }
  if (!data) return std::nullopt;
  try {
    return JSONDecoder(storedDates).decode<TokenDto>(*data);
  } catch (const DecodingError&) {
    return std::nullopt;
  }
}

void KeychainTokenStorage::set(const std::optional<TokenDto>& token) {
  try {
    if (token) {
      keychain_->set(JSONEncoder(storedDates).encode(*token), key_, anySynchronizable);
    } else {
      keychain_->remove(key_, anySynchronizable);
    }
  } catch (const EncodingError&) {
    removeSilently();
  } catch (...) {
    report(std::current_exception());
  }
}

void KeychainTokenStorage::removeSilently() noexcept {
  try {
    keychain_->remove(key_, anySynchronizable);
  } catch (...) {  // nothing is left to be done about it
  }
}

void KeychainTokenStorage::report(const std::exception_ptr& failure) const noexcept {
  std::string text = "[Authentifier] keychain error : ";
  try {
    std::rethrow_exception(failure);
  } catch (const std::exception& error) {
    Log::error(logger_, text + error.what(), &error);
  } catch (...) {  // a host's own keychain may throw anything
    Log::error(logger_, text + "unknown", static_cast<const std::exception*>(nullptr));
  }
}

}  // namespace ZAK
