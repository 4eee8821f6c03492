#pragma once

#include <zvapikit/core/EmptyDto.hpp>
#include <zvapikit/core/MobileApiClient.hpp>
#include <zvapikit/core/ZAKError.hpp>
#include <zvapikit/http/HTTPRequest.hpp>

#include <exception>
#include <string>
#include <type_traits>
#include <utility>

namespace ZAK {

/// One operation of the API in the making: method and path, then query and body. What cannot be encoded is kept and
/// thrown by the call, so that it reaches the host where it awaits.
class Endpoint {
 public:
  using Variables = HTTPRequest::Variables;

  static Endpoint get(std::string path, Variables variables = {}) {
    return Endpoint(HTTPMethod::get, std::move(path), std::move(variables));
  }
  static Endpoint post(std::string path, Variables variables = {}) {
    return Endpoint(HTTPMethod::post, std::move(path), std::move(variables));
  }
  static Endpoint put(std::string path, Variables variables = {}) {
    return Endpoint(HTTPMethod::put, std::move(path), std::move(variables));
  }
  static Endpoint patch(std::string path, Variables variables = {}) {
    return Endpoint(HTTPMethod::patch, std::move(path), std::move(variables));
  }
  static Endpoint delete_(std::string path, Variables variables = {}) {
    return Endpoint(HTTPMethod::delete_, std::move(path), std::move(variables));
  }

  Endpoint&& query(std::string name, std::string value) && {
    request.addParameter(std::move(name), std::move(value));
    return std::move(*this);
  }

  template <class Record>
  Endpoint&& json(const Record& record) && {
    try {
      request.body = HTTPBody::json(record);
    } catch (...) {
      failure = std::current_exception();
    }
    return std::move(*this);
  }

  HTTPRequest request;
  std::exception_ptr failure;

 private:
  Endpoint(HTTPMethod method, std::string path, Variables variables)
      : request(method, std::move(path), std::move(variables)) {}
};

/// Fires an operation as the signed-in user, on the client if it is still there. A `Result` of void drops the answer.
template <class Result>
boost::asio::awaitable<Result> fire(std::weak_ptr<MobileApiClient> weakClient, Endpoint endpoint) {
  if (endpoint.failure) std::rethrow_exception(endpoint.failure);
  const auto client = weakClient.lock();
  if (!client) throw ZAKError(ZAKError::noClientAvailable);
  if constexpr (std::is_void_v<Result>) {
    co_await client->fire<EmptyDto>(std::move(endpoint.request), true);
  } else {
    co_return co_await client->fire<Result>(std::move(endpoint.request), true);
  }
}

}  // namespace ZAK
