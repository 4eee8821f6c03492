#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/keychain/KeychainError.hpp>

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace ZAK {

/// When an item can be read. A backend without locks of its own keeps items readable at all times.
enum class KeychainAccessibility {
  whenUnlocked,      ///< only while the device is unlocked
  afterFirstUnlock,  ///< once the device has been unlocked since it started
};

/// What all items of one keychain handle have in common.
///
/// Thread safety: as a standard container.
struct KeychainSettings {
  std::string service;                                                            ///< whose items, in reverse DNS form
  std::string accessGroup;                                                        ///< programs that share the items
  KeychainAccessibility accessibility = KeychainAccessibility::afterFirstUnlock;  ///< when they can be read
};

/// How one operation looks for its item.
///
/// Thread safety: as a standard container.
struct KeychainOptions {
  /// Finds the item whether or not it was written as synchronizable. Items are never synchronised on this platform, so
  /// the backends here find an item either way; a backend of a host's own may tell them apart.
  bool ignoreSynchronizable = false;
};

/// Keeps small secrets: generic-password items, each addressed by the handle's service and access group and a key.
///
/// Operations are synchronous, so not to be cancelled, and may wait for a disk or another process. All may be repeated:
/// reading again after a failure is harmless; a failed write or removal left the item as it was unless the status is
/// `KeychainStatus::io`, after which it may have been done without being safe from a loss of power, or another process
/// that keeps the items did not answer in time.
///
/// Thread safety: callable from any thread; of two writers the last one's data stay, whole.
class ZVAPIKIT_API Keychain {
 public:
  /// A handle of these settings.
  explicit Keychain(KeychainSettings settings) : settings_(std::move(settings)) {}
  Keychain(const Keychain&) = delete;
  Keychain& operator=(const Keychain&) = delete;
  virtual ~Keychain() = default;

  /// What the handle's items have in common.
  [[nodiscard]] const KeychainSettings& settings() const noexcept { return settings_; }

  /// The item's bytes; absent when there is no item.
  /// \throws KeychainError
  [[nodiscard]] virtual std::optional<std::string> data(const std::string& key, KeychainOptions options = {}) = 0;
  /// Creates the item or replaces what it held.
  /// \throws KeychainError
  virtual void set(std::string_view data, const std::string& key, KeychainOptions options = {}) = 0;
  /// Deletes the item. It is no error when there is none.
  /// \throws KeychainError
  virtual void remove(const std::string& key, KeychainOptions options = {}) = 0;

 private:
  KeychainSettings settings_;
};

}  // namespace ZAK
