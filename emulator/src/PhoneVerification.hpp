#pragma once

#include <zvapikit/json/Date.hpp>

#include <string>

namespace ZAK {

/// A code that was sent to a phone.
struct PhoneVerification {
  std::string phoneNumber;
  Date expires;
  int wrongCodes = 0;
  bool isVerified = false;
};

}  // namespace ZAK
