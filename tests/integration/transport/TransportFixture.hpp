#pragma once

#include "integration/support/FaultServer.hpp"
#include "support/Runner.hpp"

#include <zvapikit/http/CurlTransport.hpp>

#include <memory>
#include <string>

namespace ZAK::Tests {

/// A transfer under way.
using Call = std::shared_ptr<Running<TransferResult>>;

inline TransferRequest get(std::string url) {
  TransferRequest request;
  request.url = std::move(url);
  return request;
}

/// What a caller is told: the error, or else the body.
inline std::string told(const HTTPResponse& response) {
  return response.error ? response.error->description() : response.body;
}

inline std::optional<HTTPError::Kind> errorKind(const HTTPResponse& response) {
  return response.error ? std::optional(response.error->kind()) : std::nullopt;
}

/// An execution context, and transports on it.
class TransportFixture : public testing::Test {
 protected:
  /// Those of a transport that trusts the tests' servers.
  [[nodiscard]] static TransportOptions options() {
    TransportOptions made;
    made.caFile = authority().file();
    return made;
  }
  [[nodiscard]] std::shared_ptr<Transport> transport(const TransportOptions& with = options()) {
    return CurlTransport::create(runner.executor(), with);
  }

  Call start(boost::asio::awaitable<TransferResult> transfer) {
    return std::make_shared<Running<TransferResult>>(runner.context(), std::move(transfer));
  }
  /// Carries one transfer through from start to end.
  TransferResult perform(const std::shared_ptr<Transport>& transport, TransferRequest request) {
    return runner.run(transport->perform(std::move(request)));
  }
  /// The same with a transport of its own.
  TransferResult perform(TransferRequest request, const TransportOptions& with = options()) {
    return perform(transport(with), std::move(request));
  }

  Runner runner;
};

}  // namespace ZAK::Tests
