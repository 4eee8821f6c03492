#include "core/MobileApiRequestExecutor.hpp"

#include "core/Log.hpp"

#include <zvapikit/core/EmptyDto.hpp>
#include <zvapikit/core/ZAKError.hpp>
#include <zvapikit/http/HTTPClient.hpp>
#include <zvapikit/json/JSONPrinting.hpp>

#include <iostream>

namespace ZAK {

struct MobileApiRequestExecutor::State {
  DelegateReference<LoggerDelegate> logger;
  JSONDecoder decoder;
  std::shared_ptr<HTTPClient> client;
  bool redactsSecrets;

  void succeeded(const std::string& request) const {
    if (logger.lock()) Log::message(logger, "[ZAK] request : " + request + " ✅");
  }

  void failed(const std::string& request, const std::string& reason, const std::exception* error) const {
    if (logger.lock()) Log::error(logger, "[ZAK] request : " + request + " ❌ \n error: " + reason, error);
  }

  /// One line, or what the pretty-printer makes of it, in one write.
  void printBody(const HTTPResponse& response) const {
    if (!response.hasAnswer() || response.body.empty()) return;
    const auto printing = redactsSecrets ? JSONPrinting::redacted : JSONPrinting::whole;
    std::cout << prettyPrinted(response.body, printing) + "\n" << std::flush;
  }

  /// Logs the failure and throws what the caller gets to see.
  [[noreturn]] void fail(const std::string& request, const HTTPError& error, const HTTPResponse& response) const {
    const auto errorDto = std::dynamic_pointer_cast<const ErrorDto>(error.underlyingError());
    failed(request, errorDto ? error.description() + " (" + errorDto->description() : error.description(), &error);
    printBody(response);
    if (errorDto) throw ZAKError(*errorDto);
    throw ZAKError(error);
  }
};

MobileApiRequestExecutor::MobileApiRequestExecutor(DelegateReference<LoggerDelegate> logger, JSONDecoder decoder,
                                                   std::shared_ptr<HTTPClient> client, bool redactsSecrets)
    : state_(std::make_shared<const State>(
          State{std::move(logger), std::move(decoder), std::move(client), redactsSecrets})) {}

boost::asio::awaitable<void> MobileApiRequestExecutor::execute(HTTPRequest request, DecodeTarget target) {
  return run(state_, std::move(request), target);
}

boost::asio::awaitable<void> MobileApiRequestExecutor::run(std::shared_ptr<const State> state, HTTPRequest request,
                                                           DecodeTarget target) {
  const std::string description = request.description();
  HTTPResponse response;
  try {
    if (request.climbsPath()) throw ZAKError(ZAKError::urlNotValid);
    response = co_await state->client->fetch(std::move(request));
    if (!response.error && !response.body.empty()) {
      state->decoder.decode(response.body, *target.type, target.value);
      state->succeeded(description);
      co_return;
    }
  } catch (const std::exception& error) {
    state->failed(description, error.what(), &error);
    state->printBody(response);
    throw;
  }
  if (response.error) state->fail(description, *response.error, response);
  // An answer of no byte is as good as an empty record, and no failure worth a line.
  if (target.type == &jsonType<EmptyDto>()) co_return;
  state->fail(description, HTTPError::emptyResponse(response.statusCode), response);
}

}  // namespace ZAK
