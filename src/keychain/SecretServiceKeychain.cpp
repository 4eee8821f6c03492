#include "keychain/SecretServiceKeychain.hpp"

#include "keychain/SecretServiceClient.hpp"

#include <zvapikit/keychain/FileKeychain.hpp>

#include <thread>

namespace ZAK {
namespace {

/// D-Bus carries texts that are UTF-8 without NUL.
bool isText(const std::string& text) { return g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr); }

SecretServiceAddress addressOf(const KeychainSettings& settings, const std::string& key) {
  if (key.empty() || !isText(settings.service) || !isText(settings.accessGroup) || !isText(key)) {
    throw KeychainError(KeychainStatus::param);
  }
  return {settings.service, settings.accessGroup, key};
}

}  // namespace

std::optional<std::string> SecretServiceKeychain::data(const std::string& key, KeychainOptions) {
  return run([address = addressOf(settings(), key)](SecretServiceClient& client) { return client.data(address); });
}

void SecretServiceKeychain::set(std::string_view data, const std::string& key, KeychainOptions) {
  if (data.size() > FileKeychain::maximumSize) throw KeychainError(KeychainStatus::param);
  static_cast<void>(run([address = addressOf(settings(), key), data = std::string(data)](SecretServiceClient& client) {
    client.set(data, address);
    return std::nullopt;
  }));
}

void SecretServiceKeychain::remove(const std::string& key, KeychainOptions) {
  static_cast<void>(run([address = addressOf(settings(), key)](SecretServiceClient& client) {
    client.remove(address);
    return std::nullopt;
  }));
}

std::optional<std::string> SecretServiceKeychain::run(Operation operation) {
  checkLateCall();
  auto call = std::make_shared<SecretServiceCall>();
  const auto perform = [call, operation = std::move(operation)]() noexcept {
    std::optional<KeychainStatus> failure;
    std::optional<std::string> data;
    try {
      SecretServiceClient client(*call);
      data = operation(client);
    } catch (const KeychainError& error) {
      failure = error.status();
    } catch (const std::exception&) {
      failure = KeychainStatus::internalError;
    }
    call->end(failure, std::move(data));
  };
  try {
    std::thread(perform).detach();
  } catch (const std::system_error&) {
    throw KeychainError(KeychainStatus::internalError);
  }
  if (!call->wait(limits_.call)) giveUp(std::move(call));
  if (const auto failure = call->failure()) throw KeychainError(*failure);
  return call->takeData();
}

void SecretServiceKeychain::checkLateCall() {
  const std::lock_guard lock(mutex_);
  if (!lateCall_) return;
  const bool over = lateCall_->answered() || limits_.now() >= pauseEnds_;
  if (!over || lateCall_->prompting()) throw KeychainError(lateStatus_);
  lateCall_.reset();
}

void SecretServiceKeychain::giveUp(std::shared_ptr<SecretServiceCall> call) {
  const std::lock_guard lock(mutex_);
  lateStatus_ = call->prompting() ? KeychainStatus::interactionNotAllowed : KeychainStatus::notAvailable;
  pauseEnds_ = limits_.now() + limits_.pause;
  lateCall_ = std::move(call);
  throw KeychainError(lateStatus_);
}

}  // namespace ZAK
