#pragma once

#include <zvapikit/http/HTTPValidator.hpp>
#include <zvapikit/json/Date.hpp>

#include <chrono>
#include <memory>
#include <optional>
#include <vector>

namespace ZAK {

/// Puts an error into a response whose status is outside 2xx and that has none, then shows it to the validators in
/// order. A strategy means that the request is to be sent again; absent, `response` is how the call ends.
std::optional<HTTPRetryStrategy> judged(HTTPResponse& response, const HTTPRequest& request,
                                        const std::vector<std::shared_ptr<HTTPValidator>>& validators, int retriesDone);

/// The wait before retry `retry` (from 1): the strategy's, raised by a 429's or 503's Retry-After up to a minute.
/// `jitter` is in [0.5, 1].
std::chrono::milliseconds retryDelay(const HTTPRetryStrategy& strategy, const HTTPResponse& response, int retry,
                                     double jitter, Date now);

/// The last validator of a client: retries a failed transfer of an idempotent request while no byte of an answer has
/// come, else ends the chain with the response's own error.
std::shared_ptr<HTTPValidator> makeDefaultValidator();

}  // namespace ZAK
