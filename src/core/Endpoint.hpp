#pragma once

#include <zvapikit/core/CursorDto.hpp>
#include <zvapikit/core/EmptyDto.hpp>
#include <zvapikit/core/MobileApiClient.hpp>
#include <zvapikit/core/ZAKError.hpp>
#include <zvapikit/http/HTTPRequest.hpp>

#include <exception>
#include <optional>
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

  /// Left out when absent.
  Endpoint&& query(std::string name, std::optional<std::string> value) && {
    if (value) request.addParameter(std::move(name), *std::move(value));
    return std::move(*this);
  }
  /// Names the page of a list; its start when absent.
  Endpoint&& page(const std::optional<CursorDto>& cursor) && {
    if (cursor) request.add(cursor->toQueryItem());
    return std::move(*this);
  }

  template <class Record>
  Endpoint&& json(const Record& record) && {
    return std::move(*this).body([&] { return HTTPBody::json(record); });
  }
  /// The body that `make` returns or fails to.
  template <class Make>
  Endpoint&& body(const Make& make) && {
    try {
      request.body = make();
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

/// \throws ZAKError `noClientAvailable` when the client is gone.
inline std::shared_ptr<MobileApiClient> locked(const std::weak_ptr<MobileApiClient>& weakClient) {
  if (auto client = weakClient.lock()) return client;
  throw ZAKError(ZAKError::noClientAvailable);
}

/// The client that an operation is fired on.
/// \throws what the operation failed of already; as `locked`.
inline std::shared_ptr<MobileApiClient> clientFor(const Endpoint& endpoint,
                                                  const std::weak_ptr<MobileApiClient>& weakClient) {
  if (endpoint.failure) std::rethrow_exception(endpoint.failure);
  return locked(weakClient);
}

/// Fires an operation at the authentication server, without a token.
template <class Result>
boost::asio::awaitable<Result> authFire(std::weak_ptr<MobileApiClient> weakClient, Endpoint endpoint) {
  const auto client = clientFor(endpoint, weakClient);
  co_return co_await client->authFire<Result>(std::move(endpoint.request));
}

/// Fires an operation as the signed-in user. A `Result` of void drops the answer.
template <class Result>
boost::asio::awaitable<Result> fire(std::weak_ptr<MobileApiClient> weakClient, Endpoint endpoint) {
  const auto client = clientFor(endpoint, weakClient);
  if constexpr (std::is_void_v<Result>) {
    co_await client->fire<EmptyDto>(std::move(endpoint.request), true);
  } else {
    co_return co_await client->fire<Result>(std::move(endpoint.request), true);
  }
}

}  // namespace ZAK
