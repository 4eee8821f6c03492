#include "http/Retry.hpp"

#include <date/date.h>

#include <algorithm>
#include <charconv>
#include <locale>
#include <sstream>

namespace ZAK {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds longestRetryAfter = std::chrono::minutes(1);

class DefaultValidator : public HTTPValidator {
 public:
  HTTPValidatorResult validate(const HTTPResponse& response, const HTTPRequest& request) override {
    if (!response.error) return HTTPValidatorResult::next();
    const bool isLocal = response.error->kind() == HTTPError::Kind::fileSystem;
    if (!response.hasAnswer() && !response.answerStarted && !isLocal && isIdempotent(request.method)) {
      return HTTPValidatorResult::retry(HTTPRetryStrategy::exponential(2));
    }
    return HTTPValidatorResult::fail(std::make_shared<HTTPError>(*response.error));
  }
};

/// RFC 9110's IMF-fixdate; the obsolete forms do not occur in practice.
std::optional<Date> httpDate(const std::string& text) {
  std::istringstream input(text);
  input.imbue(std::locale::classic());
  date::sys_seconds instant;
  input >> date::parse("%a, %d %b %Y %T GMT", instant);
  if (input.fail() || input.peek() != std::istringstream::traits_type::eof()) return std::nullopt;
  return instant;
}

/// What Retry-After asks for, from zero to a minute.
milliseconds retryAfter(const std::string& value, Date now) {
  if (!value.empty() && value.find_first_not_of("0123456789") == std::string::npos) {
    int seconds = 0;
    const auto [end, failure] = std::from_chars(value.data(), value.data() + value.size(), seconds);
    return failure == std::errc() ? std::min<milliseconds>(std::chrono::seconds(seconds), longestRetryAfter)
                                  : longestRetryAfter;
  }
  const std::optional<Date> instant = httpDate(value);
  if (!instant) return {};
  return std::clamp(std::chrono::ceil<milliseconds>(*instant - now), milliseconds(), longestRetryAfter);
}

/// The error of a call that a validator ended. An `HTTPError` stands for itself; anything else is wrapped in one that
/// reads like the response's own.
HTTPError rejection(const HTTPResponse& response, std::shared_ptr<const std::exception> reason) {
  if (const auto* error = dynamic_cast<const HTTPError*>(reason.get())) return *error;
  const HTTPError& own = response.error ? *response.error : HTTPError::unsuccessful(response.statusCode);
  return HTTPError(HTTPError::Kind::rejected, response.statusCode, own.description(), own.transportCode(),
                   std::move(reason));
}

}  // namespace

std::optional<HTTPRetryStrategy> judged(HTTPResponse& response, const HTTPRequest& request,
                                        const std::vector<std::shared_ptr<HTTPValidator>>& validators,
                                        int retriesDone) {
  if (!response.error && !response.statusCode.isSuccess()) {
    response.error = HTTPError::unsuccessful(response.statusCode);
  }
  for (const std::shared_ptr<HTTPValidator>& validator : validators) {
    const HTTPValidatorResult result = validator->validate(response, request);
    if (const HTTPValidatorResult::Fail* failure = result.failure()) {
      response.error = rejection(response, failure->error);
      return std::nullopt;
    }
    if (result.retryStrategy() && retriesDone < request.maxRetries) return *result.retryStrategy();
  }
  return std::nullopt;
}

milliseconds retryDelay(const HTTPRetryStrategy& strategy, const HTTPResponse& response, int retry, double jitter,
                        Date now) {
  const milliseconds delay = strategy.delay(retry, jitter);
  const std::optional<std::string> wish = response.headers.value("Retry-After");
  const int status = response.statusCode.code();
  if (!wish || (status != 429 && status != 503)) return delay;
  return std::max(delay, retryAfter(*wish, now));
}

std::shared_ptr<HTTPValidator> makeDefaultValidator() { return std::make_shared<DefaultValidator>(); }

}  // namespace ZAK
