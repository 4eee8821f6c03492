#include "keychain/SelectedKeychain.hpp"

#include "keychain/FileErrors.hpp"
#include "platform/PrivateFiles.hpp"

#include <zvapikit/keychain/FileKeychain.hpp>

namespace ZAK {
namespace {

constexpr const char* recordName = "backend";
constexpr std::string_view fileBackend = "file\n";
constexpr std::string_view secretServiceBackend = "secret-service\n";

/// Whether the keychain can be read. The item asked for is one that nobody writes: it is never locked, so that the user
/// is not asked anything.
bool answers(Keychain& keychain) {
  try {
    static_cast<void>(keychain.data("probe"));
    return true;
  } catch (const KeychainError&) {
    return false;
  }
}

}  // namespace

std::shared_ptr<Keychain> SelectedKeychain::backend() {
  const std::lock_guard lock(mutex_);
  if (!backend_) {
    const std::string recorded = recordedBackend();
    if (recorded == secretServiceBackend) {
      backend_ = secretService_;
    } else if (recorded == fileBackend) {
      backend_ = std::make_shared<FileKeychain>(settings(), directory_);
    } else {
      throw KeychainError(KeychainStatus::notAvailable);
    }
  }
  return backend_;
}

/// Chooses and records a backend when none is recorded yet.
std::string SelectedKeychain::recordedBackend() const {
  return translatingFileErrors([&] {
    constexpr std::size_t longest = 64;
    const PrivateDirectory directory = PrivateDirectory::create(directory_);
    if (auto record = directory.read(recordName, longest)) return *std::move(record);
    std::string choice(answers(*secretService_) ? secretServiceBackend : fileBackend);
    if (directory.createNew(recordName, choice)) return choice;
    return directory.read(recordName, longest).value_or("");  // another process was first
  });
}

}  // namespace ZAK
