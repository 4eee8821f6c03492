#pragma once

#include <zvapikit/Export.hpp>

#include <string_view>

namespace ZAK {

/// The status codes a keychain fails with.
enum class KeychainStatus {
  param = -50,                     ///< a key or data that cannot be an item's
  userCanceled = -128,             ///< the user dismissed the prompt
  notAvailable = -25291,           ///< the backend is away, or did not answer in time
  authFailed = -25293,             ///< the backend refused the user or the program
  duplicateItem = -25299,          ///< such an item is there already
  itemNotFound = -25300,           ///< there is no such item
  noDefaultKeychain = -25307,      ///< there is nowhere to keep items
  interactionNotAllowed = -25308,  ///< locked, and nobody answered the prompt
  decode = -26275,                 ///< what is stored is damaged, or another item's
  missingEntitlement = -34018,     ///< the program may not use the access group
  io = -36,                        ///< an error of the file system
  internalError = -67671           ///< anything else
};

/// The status in words, for people. Callable from any thread.
ZVAPIKIT_API std::string_view message(KeychainStatus status) noexcept;

}  // namespace ZAK
