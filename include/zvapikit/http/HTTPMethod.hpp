#pragma once

#include <zvapikit/Export.hpp>

#include <string_view>

namespace ZAK {

/// The request methods of RFC 9110 (and RFC 5789's PATCH) that the kit uses.
enum class HTTPMethod {
  get,     ///< GET
  head,    ///< HEAD
  post,    ///< POST
  put,     ///< PUT
  patch,   ///< PATCH
  delete_  ///< DELETE
};

/// The method as it stands on the request line, for example `GET`.
[[nodiscard]] ZVAPIKIT_API std::string_view rawValue(HTTPMethod method) noexcept;

/// True for GET, HEAD, PUT and DELETE: sending such a request twice has the effect of sending it once, so that a
/// transport failure before the first byte of an answer may be retried.
[[nodiscard]] ZVAPIKIT_API bool isIdempotent(HTTPMethod method) noexcept;

}  // namespace ZAK
