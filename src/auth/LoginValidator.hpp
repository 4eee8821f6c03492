#pragma once

#include <zvapikit/core/DelegateReference.hpp>
#include <zvapikit/http/HTTPValidator.hpp>
#include <zvapikit/json/JSONDecoder.hpp>

#include <memory>

namespace ZAK {

class LoggerDelegate;
class MobileApiAuthentifier;

/// Recognises an authentication failure of the mobile API and has the request signed again and sent again.
class LoginValidator final : public HTTPValidator {
 public:
  LoginValidator(std::weak_ptr<MobileApiAuthentifier> authentifier, DelegateReference<LoggerDelegate> logger,
                 JSONDecoder decoder, bool redactsSecrets);

  HTTPValidatorResult validate(const HTTPResponse& response, const HTTPRequest& request) override;

 private:
  std::weak_ptr<MobileApiAuthentifier> authentifier_;
  DelegateReference<LoggerDelegate> logger_;
  JSONDecoder decoder_;
  bool redactsSecrets_;
};

}  // namespace ZAK
