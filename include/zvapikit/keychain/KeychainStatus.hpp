#pragma once

#include <zvapikit/Export.hpp>

#include <string_view>

namespace ZAK {

/// The status codes a keychain fails with.
enum class KeychainStatus {
  param = -50,
  userCanceled = -128,
  notAvailable = -25291,
  authFailed = -25293,
  duplicateItem = -25299,
  itemNotFound = -25300,
  noDefaultKeychain = -25307,
  interactionNotAllowed = -25308,
  decode = -26275,
  missingEntitlement = -34018,
  io = -36,
  internalError = -67671
};

/// The status in words, for people.
ZVAPIKIT_API std::string_view message(KeychainStatus status) noexcept;

}  // namespace ZAK
