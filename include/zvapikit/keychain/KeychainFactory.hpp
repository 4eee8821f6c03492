#pragma once

#include <zvapikit/keychain/Keychain.hpp>

#include <memory>

namespace ZAK {

/// Owns the keychain handle the kit uses unless a host brings its own.
class KeychainFactory {
 public:
  KeychainFactory() = delete;

  /// Service `com.zolvi.ZVApiKit`, access group `group.Zolvi`, readable after the first unlock. Made by the first call
  /// and then the same for the whole process. Where the items are is settled by its first operation: in files below
  /// `$XDG_DATA_HOME/com.zolvi.ZVApiKit`, unless another backend is recorded there, in which case operations fail with
  /// `KeychainStatus::notAvailable`.
  ///
  /// Thread safety: callable from any thread.
  static std::shared_ptr<Keychain> shared();
};

}  // namespace ZAK
