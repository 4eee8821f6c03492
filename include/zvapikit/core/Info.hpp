#pragma once

#include <zvapikit/Export.hpp>

#include <string_view>

/// The kit, whole. What follows holds wherever a symbol does not say otherwise.
///
/// **Operations** yield a `boost::asio::awaitable`: an ordinary call builds it, awaiting it runs it, on the caller's
/// executor. What fails is thrown where it is awaited. Hosts without coroutines pass it to `MobileApiClient::spawn`,
/// for a callback or a future, or to `BlockingClient::run`.
///
/// **Cancellation** of any type ends an operation at once with `boost::system::system_error` of `operation_aborted`. A
/// server may have acted on the request all the same.
///
/// **Safe to repeat** is an operation that a host may make again after a failure or a cancellation: the server is then
/// as after one call. The second call itself may be refused, for want of what the first has removed. What the kit sends
/// again by itself is told at `Client`.
///
/// **Thread safety** of records (`...Dto`) and other plain structures: as a standard container, so one object is read
/// by any number of threads or changed by one.
///
/// **Records in JSON**: a `std::optional` field is absent when its key is missing or null, and is left out when it is
/// absent; every other field is required; unknown keys are ignored. An answer that is not the record expected fails as
/// a whole, with a `DecodingError`. Dates travel as ISO 8601 texts in UTC with milliseconds.
///
/// **Standard output**: the body of a failing answer is printed there, as `Context::redactsSecrets` tells, and nothing
/// else ever. Nothing is written to standard error.
namespace ZAK {

/// About the kit itself.
///
/// Thread safety: callable from any thread.
struct ZVAPIKIT_API Info {
  /// The version of the library that is linked, for example `1.0.0`.
  [[nodiscard]] static std::string_view version() noexcept;
};

}  // namespace ZAK
