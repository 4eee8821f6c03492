#include "keychain/SelectedKeychain.hpp"

#include "keychain/FileErrors.hpp"
#include "platform/PrivateFiles.hpp"

#include <zvapikit/keychain/FileKeychain.hpp>

namespace ZAK {
namespace {

constexpr const char* recordName = "backend";
constexpr std::string_view fileBackend = "file\n";

/// The recorded backend; records `backend` when there is none yet.
std::string recordedBackend(const std::filesystem::path& path, std::string_view backend) {
  return translatingFileErrors([&] {
    constexpr std::size_t longest = 64;
    const PrivateDirectory directory = PrivateDirectory::create(path);
    if (auto record = directory.read(recordName, longest)) return *std::move(record);
    if (directory.createNew(recordName, backend)) return std::string(backend);
    return directory.read(recordName, longest).value_or("");  // another process was first
  });
}

}  // namespace

std::shared_ptr<Keychain> SelectedKeychain::backend() {
  const std::lock_guard lock(mutex_);
  if (!backend_) {
    if (recordedBackend(directory_, fileBackend) != fileBackend) throw KeychainError(KeychainStatus::notAvailable);
    backend_ = std::make_shared<FileKeychain>(settings(), directory_);
  }
  return backend_;
}

}  // namespace ZAK
