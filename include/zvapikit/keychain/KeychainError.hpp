#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/keychain/KeychainStatus.hpp>

#include <exception>

namespace ZAK {

/// A keychain operation that failed. Names neither the item nor its content.
///
/// Thread safety: immutable.
class ZVAPIKIT_API KeychainError : public std::exception {
 public:
  /// A failure of this status.
  explicit KeychainError(KeychainStatus status) noexcept : status_(status) {}

  /// Why it failed.
  [[nodiscard]] KeychainStatus status() const noexcept { return status_; }
  /// The status in words, as `message` has it.
  [[nodiscard]] const char* what() const noexcept override { return message(status_).data(); }

 private:
  KeychainStatus status_;
};

}  // namespace ZAK
