#pragma once

#include <zvapikit/http/HTTPError.hpp>
#include <zvapikit/http/Transport.hpp>
#include <zvapikit/json/URL.hpp>

#include <optional>
#include <string>

namespace ZAK {

/// How an exchange goes on after its answer: to another address, to its end in an error, or, with neither, to the
/// caller.
struct RedirectStep {
  std::optional<URL> destination;
  std::optional<HTTPError> error;
};

/// `target` is the absolute address that a 3xx answer names; `followed` counts the redirects before this one.
[[nodiscard]] RedirectStep nextStep(const TransferRequest& request, const HTTPResponse& response,
                                    const std::optional<std::string>& target, std::size_t followed);

/// Sends the request to the destination. All of its headers are dropped when that is another scheme, host or port: any
/// of them may be a secret that only the first server may know.
void redirect(TransferRequest& request, const URL& destination);

}  // namespace ZAK
