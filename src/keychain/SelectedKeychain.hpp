#pragma once

#include <zvapikit/keychain/Keychain.hpp>

#include <filesystem>
#include <memory>
#include <mutex>

namespace ZAK {

/// Picks the backend of a service's items at the first operation and keeps to it: the Secret Service when it answers,
/// else files. The choice is recorded beside the files, so that every later process makes the same one: an item left
/// behind in a backend that was used before must never be taken for the current one. A recorded backend that is not
/// there fails with `KeychainStatus::notAvailable`, and is looked for again at the next operation.
class SelectedKeychain final : public Keychain {
 public:
  SelectedKeychain(KeychainSettings settings, std::filesystem::path directory, std::shared_ptr<Keychain> secretService)
      : Keychain(std::move(settings)), directory_(std::move(directory)), secretService_(std::move(secretService)) {}

  [[nodiscard]] std::optional<std::string> data(const std::string& key, KeychainOptions options = {}) override {
    return backend()->data(key, options);
  }
  void set(std::string_view data, const std::string& key, KeychainOptions options = {}) override {
    backend()->set(data, key, options);
  }
  void remove(const std::string& key, KeychainOptions options = {}) override { backend()->remove(key, options); }

 private:
  [[nodiscard]] std::shared_ptr<Keychain> backend();
  [[nodiscard]] std::string recordedBackend() const;

  std::filesystem::path directory_;
  std::shared_ptr<Keychain> secretService_;
  std::mutex mutex_;
  std::shared_ptr<Keychain> backend_;
};

}  // namespace ZAK
