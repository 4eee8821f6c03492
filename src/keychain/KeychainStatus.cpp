#include <zvapikit/keychain/KeychainStatus.hpp>

namespace ZAK {

// Literals only: `KeychainError::what` relies on the terminating zero.
std::string_view message(KeychainStatus status) noexcept {
  switch (status) {
    case KeychainStatus::param:
      return "One or more parameters passed to a function were not valid.";
    case KeychainStatus::userCanceled:
      return "User canceled the operation.";
    case KeychainStatus::notAvailable:
      return "No keychain is available. You may need to restart your computer.";
    case KeychainStatus::authFailed:
      return "The user name or passphrase you entered is not correct.";
    case KeychainStatus::duplicateItem:
      return "The specified item already exists in the keychain.";
    case KeychainStatus::itemNotFound:
      return "The specified item could not be found in the keychain.";
    case KeychainStatus::noDefaultKeychain:
      return "A default keychain could not be found.";
    case KeychainStatus::interactionNotAllowed:
      return "User interaction is not allowed.";
    case KeychainStatus::decode:
      return "Unable to decode the provided data.";
    case KeychainStatus::missingEntitlement:
      return "A required entitlement isn't present.";
    case KeychainStatus::io:
      return "I/O error.";
    case KeychainStatus::internalError:
      break;
  }
  return "An internal error has occurred.";
}

}  // namespace ZAK
