#pragma once

#include <zvapikit/http/HTTPValidator.hpp>

namespace ZAK {

/// Has failed token requests sent again with back-off. Other requests to the authentication server pass.
class AuthentifierValidator final : public HTTPValidator {
 public:
  HTTPValidatorResult validate(const HTTPResponse& response, const HTTPRequest& request) override;
};

}  // namespace ZAK
