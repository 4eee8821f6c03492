#pragma once

#include <zvapikit/http/HTTPValidator.hpp>
#include <zvapikit/json/JSONDecoder.hpp>

namespace ZAK {

/// Ends the chain with the server's own description of a failure, where the body holds one.
class ErrorApiValidator final : public HTTPValidator {
 public:
  explicit ErrorApiValidator(JSONDecoder decoder) : decoder_(std::move(decoder)) {}

  HTTPValidatorResult validate(const HTTPResponse& response, const HTTPRequest& request) override;

 private:
  JSONDecoder decoder_;
};

}  // namespace ZAK
