#include "keychain/SelectedKeychain.hpp"

#include <zvapikit/keychain/FileKeychain.hpp>
#include <zvapikit/keychain/KeychainFactory.hpp>

namespace ZAK {

std::shared_ptr<Keychain> KeychainFactory::shared() {
  // Never destroyed, so that a client that outlives main() can still use it.
  static const auto& keychain = *new std::shared_ptr<Keychain>([] {
    KeychainSettings settings{.service = "com.zolvi.ZVApiKit",
                              .accessGroup = "group.Zolvi",
                              .accessibility = KeychainAccessibility::afterFirstUnlock};
    auto directory = FileKeychain::defaultDirectory(settings.service);
    return std::make_shared<SelectedKeychain>(std::move(settings), std::move(directory));
  }());
  return keychain;
}

}  // namespace ZAK
