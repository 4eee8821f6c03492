#pragma once

#include <zvapikit/core/DelegateReference.hpp>
#include <zvapikit/core/RequestExecutor.hpp>
#include <zvapikit/http/HTTPResponse.hpp>
#include <zvapikit/json/JSONDecoder.hpp>

#include <memory>

namespace ZAK {

class HTTPClient;
class LoggerDelegate;

/// Sends requests through one HTTP client, decodes and logs every answer, and prints the body of each failing one to
/// standard output.
class MobileApiRequestExecutor final : public RequestExecutor {
 public:
  MobileApiRequestExecutor(DelegateReference<LoggerDelegate> logger, JSONDecoder decoder,
                           std::shared_ptr<HTTPClient> client, bool redactsSecrets);

  boost::asio::awaitable<void> execute(HTTPRequest request, DecodeTarget target) override;

 private:
  struct State;
  static boost::asio::awaitable<void> run(std::shared_ptr<const State> state, HTTPRequest request, DecodeTarget target);

  std::shared_ptr<const State> state_;
};

}  // namespace ZAK
