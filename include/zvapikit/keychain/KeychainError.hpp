#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/keychain/KeychainStatus.hpp>

#include <exception>

namespace ZAK {

/// A keychain operation that failed. Names neither the item nor its content.
class ZVAPIKIT_API KeychainError : public std::exception {
 public:
  explicit KeychainError(KeychainStatus status) noexcept : status_(status) {}

  [[nodiscard]] KeychainStatus status() const noexcept { return status_; }
  /// The message of the status.
  [[nodiscard]] const char* what() const noexcept override { return message(status_).data(); }

 private:
  KeychainStatus status_;
};

}  // namespace ZAK
