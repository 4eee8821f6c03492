#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/auth/VonageDto.hpp>
#include <zvapikit/core/MobileApiDomain.hpp>

#include <boost/asio/awaitable.hpp>

#include <string>

namespace ZAK {

/// Verifies the user's phone number with a code that Vonage's verification service sends to it. Both operations go to
/// the authentication server, without a token: they serve to sign in. An answer whose status is not `success` is a
/// result like any other. The kit sends neither again when the connection fails. Thread safety, executors, lifetimes,
/// cancellation and errors are those of `MobileApiDomain` and `Client`.
class ZVAPIKIT_API VonageDomain : public MobileApiDomain {
 public:
  using MobileApiDomain::MobileApiDomain;

  /// Has a code sent to a phone number, given in E.164 form (`+33639980101`). Safe to repeat: asked again too soon the
  /// service answers `codeAlreadySend`.
  boost::asio::awaitable<VonageRequestCodeResponseDto> requestCode(std::string phoneNumber);
  /// Checks the code that the user typed, of the verification that `requestCode` began. Repeated after a success the
  /// service answers `requestAlreadyVerified`, without the token; repeated with a wrong code too often, `wrongCode`.
  boost::asio::awaitable<VonageCheckCodeResponseDto> checkCode(std::string vonageRequestId, std::string code);
};

}  // namespace ZAK
