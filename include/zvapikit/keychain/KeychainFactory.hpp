#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/keychain/Keychain.hpp>

#include <memory>

namespace ZAK {

/// Owns the keychain handle the kit uses unless a host brings its own.
///
/// Thread safety: callable from any thread.
class ZVAPIKIT_API KeychainFactory {
 public:
  /// Where items are kept.
  enum class Backend {
    memory,         ///< in the process
    file,           ///< in files below `$XDG_DATA_HOME/com.zolvi.ZVApiKit` that only the user can read
    secretService,  ///< in the desktop's keyring: GNOME Keyring, KWallet, KeePassXC ...
  };

  KeychainFactory() = delete;

  /// Service `com.zolvi.ZVApiKit`, access group `group.Zolvi`, readable after the first unlock. Made by the first call
  /// and then the same for the whole process.
  ///
  /// Where the items are is settled by the first operation ever made: in the Secret Service when that can be read,
  /// else in files. The choice is recorded beside the files, and holds for all later processes. While the recorded one
  /// is away, operations fail with `KeychainStatus::notAvailable`.
  ///
  /// Each call to the Secret Service ends within 5 s. One that does not answer by then has failed with
  /// `KeychainStatus::notAvailable`, or with `KeychainStatus::interactionNotAllowed` when it was the user who did not
  /// answer, and so do all operations of the next minute, at once. A write or removal that failed this way may still
  /// be carried out by the service.
  static std::shared_ptr<Keychain> shared();

  /// A handle of its own with the same settings that uses this backend and no other, whatever is recorded. What the
  /// backend cannot do, its operations throw.
  static std::shared_ptr<Keychain> make(Backend backend);
};

}  // namespace ZAK
