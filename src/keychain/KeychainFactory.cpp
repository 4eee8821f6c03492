#include "keychain/SecretServiceKeychain.hpp"
#include "keychain/SelectedKeychain.hpp"

#include <zvapikit/keychain/FileKeychain.hpp>
#include <zvapikit/keychain/InMemoryKeychain.hpp>
#include <zvapikit/keychain/KeychainFactory.hpp>

namespace ZAK {
namespace {

KeychainSettings kitSettings() {
  return {.service = "com.zolvi.ZVApiKit",
          .accessGroup = "group.Zolvi",
          .accessibility = KeychainAccessibility::afterFirstUnlock};
}

}  // namespace

std::shared_ptr<Keychain> KeychainFactory::shared() {
  // Never destroyed, so that a client that outlives main() can still use it.
  static const auto& keychain = *new std::shared_ptr<Keychain>([] {
    const KeychainSettings settings = kitSettings();
    return std::make_shared<SelectedKeychain>(settings, FileKeychain::defaultDirectory(settings.service),
                                              make(Backend::secretService));
  }());
  return keychain;
}

std::shared_ptr<Keychain> KeychainFactory::make(Backend backend) {
  KeychainSettings settings = kitSettings();
  if (backend == Backend::secretService) return std::make_shared<SecretServiceKeychain>(std::move(settings));
  if (backend == Backend::memory) return std::make_shared<InMemoryKeychain>(std::move(settings));
  auto directory = FileKeychain::defaultDirectory(settings.service);
  return std::make_shared<FileKeychain>(std::move(settings), std::move(directory));
}

}  // namespace ZAK
