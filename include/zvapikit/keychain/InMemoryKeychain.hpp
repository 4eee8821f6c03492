#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/keychain/Keychain.hpp>

#include <cstddef>
#include <map>
#include <mutex>

namespace ZAK {

/// A keychain that is gone with the object. For tests, and for hosts that want to sign in anew at each start.
///
/// Thread safety: callable from any thread.
class ZVAPIKIT_API InMemoryKeychain final : public Keychain {
 public:
  /// Operations asked for so far, failed ones included.
  struct Counts {
    std::size_t reads = 0;     ///< calls of `data`
    std::size_t writes = 0;    ///< calls of `set`
    std::size_t removals = 0;  ///< calls of `remove`
  };

  /// An empty keychain.
  explicit InMemoryKeychain(KeychainSettings settings = {}) : Keychain(std::move(settings)) {}

  [[nodiscard]] std::optional<std::string> data(const std::string& key, KeychainOptions options = {}) override;
  void set(std::string_view data, const std::string& key, KeychainOptions options = {}) override;
  void remove(const std::string& key, KeychainOptions options = {}) override;

  /// Makes the next `operations` operations, of any kind, fail with `status` and change nothing. Replaces what was
  /// asked for before.
  void failNext(KeychainStatus status, std::size_t operations = 1);
  /// What was asked for so far.
  [[nodiscard]] Counts counts() const;

 private:
  void failIfAsked();

  mutable std::mutex mutex_;
  std::map<std::string, std::string> items_;
  Counts counts_;
  KeychainStatus failure_ = KeychainStatus::internalError;
  std::size_t failuresLeft_ = 0;
};

}  // namespace ZAK
