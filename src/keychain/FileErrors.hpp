#pragma once

#include <zvapikit/keychain/KeychainError.hpp>

#include <system_error>

namespace ZAK {

/// Runs `operation`; an error of the file system becomes `KeychainStatus::io`.
template <class Operation>
auto translatingFileErrors(Operation operation) {
  try {
    return operation();
  } catch (const std::system_error&) {
    throw KeychainError(KeychainStatus::io);
  }
}

}  // namespace ZAK
