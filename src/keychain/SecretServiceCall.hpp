#pragma once

#include <zvapikit/keychain/KeychainStatus.hpp>

#include <chrono>
#include <condition_variable>
#include <gio/gio.h>
#include <mutex>
#include <optional>
#include <string>

namespace ZAK {

/// One call to the Secret Service, shared by the caller and the thread that makes the call. The caller waits no longer
/// than it wants to; the thread may go on after that, and then nobody sees what it yields.
class SecretServiceCall {
 public:
  SecretServiceCall() : cancellable_(g_cancellable_new()) {}
  SecretServiceCall(const SecretServiceCall&) = delete;
  SecretServiceCall& operator=(const SecretServiceCall&) = delete;
  ~SecretServiceCall() { g_object_unref(cancellable_); }

  // The caller's side.

  /// False when the call has not ended in time; it is then cancelled and sends nothing any more. A prompt that is on
  /// the screen stays there.
  [[nodiscard]] bool wait(std::chrono::milliseconds bound) {
    std::unique_lock lock(mutex_);
    if (changed_.wait_for(lock, bound, [this] { return ended_; })) return true;
    lock.unlock();
    g_cancellable_cancel(cancellable_);
    return false;
  }
  /// Absent when the call succeeded. Only for a call that has ended, as is `takeData`.
  [[nodiscard]] std::optional<KeychainStatus> failure() const { return failure_; }
  [[nodiscard]] std::optional<std::string> takeData() { return std::move(data_); }

  /// The user is being asked something.
  [[nodiscard]] bool prompting() const {
    const std::lock_guard lock(mutex_);
    return prompting_;
  }
  /// The user was asked something, and said neither no nor nothing.
  [[nodiscard]] bool answered() const {
    const std::lock_guard lock(mutex_);
    return answered_;
  }

  // The side of the thread.

  [[nodiscard]] GCancellable* cancellable() const noexcept { return cancellable_; }
  void promptBegins() {
    const std::lock_guard lock(mutex_);
    prompting_ = true;
  }
  void promptEnds(bool answered) {
    const std::lock_guard lock(mutex_);
    prompting_ = false;
    answered_ = answered;
  }
  void end(std::optional<KeychainStatus> failure, std::optional<std::string> data) {
    const std::lock_guard lock(mutex_);
    failure_ = failure;
    data_ = std::move(data);
    ended_ = true;
    changed_.notify_all();
  }

 private:
  GCancellable* cancellable_;
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  bool ended_ = false;
  bool prompting_ = false;
  bool answered_ = false;
  std::optional<KeychainStatus> failure_;
  std::optional<std::string> data_;
};

}  // namespace ZAK
