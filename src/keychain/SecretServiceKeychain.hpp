#pragma once

#include <zvapikit/keychain/Keychain.hpp>

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>

namespace ZAK {

class SecretServiceCall;
class SecretServiceClient;

/// How long a Secret Service may take.
struct SecretServiceLimits {
  std::chrono::milliseconds call = std::chrono::seconds(5);   ///< longest wait of one call
  std::chrono::milliseconds pause = std::chrono::minutes(1);  ///< a service that ran into it is left alone that long
  std::function<std::chrono::steady_clock::time_point()> now = std::chrono::steady_clock::now;  ///< measures the pause
};

/// Keeps items in the user's Secret Service (GNOME Keyring, KWallet, KeePassXC ...), in its default collection. An item
/// is found by service, access group and key.
///
/// Each call is made by a thread of its own, for which the caller waits no longer than the limit. A service that has
/// not answered by then is not available, and for a pause after that calls fail at once. A call of which nobody awaits
/// the end any more is cancelled; its thread owns all it uses, and neither the end of the keychain nor that of the
/// process waits for it. A write that was cancelled may still be done by the service, which had it already.
///
/// Items that are locked make the service ask the user. A question left open beyond the limit fails with
/// `KeychainStatus::interactionNotAllowed`, as do calls as long as it is on the screen. It stays there: once it is
/// answered, calls succeed, and what was asked for by the call that gave up is not done any more.
class SecretServiceKeychain final : public Keychain {
 public:
  explicit SecretServiceKeychain(KeychainSettings settings, SecretServiceLimits limits = {})
      : Keychain(std::move(settings)), limits_(std::move(limits)) {}

  [[nodiscard]] std::optional<std::string> data(const std::string& key, KeychainOptions options = {}) override;
  void set(std::string_view data, const std::string& key, KeychainOptions options = {}) override;
  void remove(const std::string& key, KeychainOptions options = {}) override;

 private:
  using Operation = std::function<std::optional<std::string>(SecretServiceClient&)>;

  [[nodiscard]] std::optional<std::string> run(Operation operation);
  void checkLateCall();
  [[noreturn]] void giveUp(std::shared_ptr<SecretServiceCall> call);

  SecretServiceLimits limits_;
  std::mutex mutex_;
  std::shared_ptr<SecretServiceCall> lateCall_;  ///< the last one that ran into the limit
  KeychainStatus lateStatus_ = KeychainStatus::notAvailable;
  std::chrono::steady_clock::time_point pauseEnds_;
};

}  // namespace ZAK
