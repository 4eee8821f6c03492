#include <zvapikit/keychain/InMemoryKeychain.hpp>

namespace ZAK {

std::optional<std::string> InMemoryKeychain::data(const std::string& key, KeychainOptions) {
  const std::lock_guard lock(mutex_);
  ++counts_.reads;
  failIfAsked();
  const auto item = items_.find(key);
  return item == items_.end() ? std::nullopt : std::optional(item->second);
}

void InMemoryKeychain::set(std::string_view data, const std::string& key, KeychainOptions) {
  const std::lock_guard lock(mutex_);
  ++counts_.writes;
  failIfAsked();
  items_.insert_or_assign(key, std::string(data));
}

void InMemoryKeychain::remove(const std::string& key, KeychainOptions) {
  const std::lock_guard lock(mutex_);
  ++counts_.removals;
  failIfAsked();
  items_.erase(key);
}

void InMemoryKeychain::failNext(KeychainStatus status, std::size_t operations) {
  const std::lock_guard lock(mutex_);
  failure_ = status;
  failuresLeft_ = operations;
}

InMemoryKeychain::Counts InMemoryKeychain::counts() const {
  const std::lock_guard lock(mutex_);
  return counts_;
}

void InMemoryKeychain::failIfAsked() {
  if (failuresLeft_ == 0) return;
  --failuresLeft_;
  throw KeychainError(failure_);
}

}  // namespace ZAK
