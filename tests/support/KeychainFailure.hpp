#pragma once

#include <zvapikit/keychain/KeychainError.hpp>

#include <functional>
#include <optional>

namespace ZAK::Tests {

/// The status that the operation fails with; absent when it succeeds.
inline std::optional<KeychainStatus> failureOf(const std::function<void()>& operation) {
  try {
    operation();
    return std::nullopt;
  } catch (const KeychainError& error) {
    return error.status();
  }
}

}  // namespace ZAK::Tests
