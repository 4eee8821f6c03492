#include "auth/LoginValidator.hpp"

#include "auth/MobileApiAuthentifier.hpp"
#include "core/ErrorBody.hpp"
#include "core/Log.hpp"

namespace ZAK {

LoginValidator::LoginValidator(std::weak_ptr<MobileApiAuthentifier> authentifier,
                               DelegateReference<LoggerDelegate> logger, JSONDecoder decoder, bool redactsSecrets)
    : authentifier_(std::move(authentifier)),
      logger_(std::move(logger)),
      decoder_(std::move(decoder)),
      redactsSecrets_(redactsSecrets) {}

HTTPValidatorResult LoginValidator::validate(const HTTPResponse& response, const HTTPRequest& request) {
  const int status = response.statusCode.code();
  if (status != 401 && status != 403) return HTTPValidatorResult::next();
  // A business error, whatever its status: signing again would not change the answer.
  if (const auto error = errorBody(response, decoder_); error && error->key()) return HTTPValidatorResult::next();
  if (authentifier_.expired()) return HTTPValidatorResult::next();

  if (logger_.lock()) {
    const auto bearer = request.headers.value("Authorization");
    Log::warning(logger_, "[LoginValidator] validation failed. Code: " + response.statusCode.description() +
                              " bearer: " +
                              (!bearer           ? "nil"
                               : redactsSecrets_ ? "<redacted>"
                                                 : *bearer));
  }
  const auto sign = [authentifier = authentifier_](std::shared_ptr<HTTPRequest> rejected) {
    return MobileApiAuthentifier::authorize(authentifier, std::move(rejected), true);
  };
  const auto report = [logger = logger_](std::exception_ptr error) {
    Log::error(logger, "[LoginValidator] failed retrieving a valid token before retrying the request", error);
  };
  return HTTPValidatorResult::retry(HTTPRetryStrategy::afterTask(std::chrono::milliseconds(100), sign, report));
}

}  // namespace ZAK
