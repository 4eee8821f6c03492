#pragma once

#include <zvapikit/http/HTTPRequest.hpp>
#include <zvapikit/http/Transport.hpp>

#include <optional>

namespace ZAK {

/// What a client adds to each of its requests.
struct RequestDefaults {
  const std::optional<URL>& baseURL;
  const HTTPHeaders& headers;
  int maxRedirects;
};

/// A request ready to go out.
struct PreparedRequest {
  URL url;
  TransferRequest transfer;
};

/// Joins a request to a client's base URL and headers.
/// \throws HTTPError of kind `invalidRequest` when it cannot be sent: the path climbs, no valid https URL results, a
/// header is malformed, or a client with a base would show its Authorization to another origin than the base's.
PreparedRequest prepared(const HTTPRequest& request, const RequestDefaults& defaults);

}  // namespace ZAK
