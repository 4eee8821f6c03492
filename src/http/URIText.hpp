#pragma once

#include <zvapikit/http/HTTPRequest.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace ZAK {

/// Everything outside `A-Z a-z 0-9 - . _ ~` as %XX of its UTF-8 bytes.
std::string percentEncoded(std::string_view text);

/// RFC 6570, simple expansion. A brace without its partner stays as it is.
std::string expandedTemplate(std::string_view uri, const HTTPRequest::Variables& variables);

/// True for `scheme://...`.
bool hasScheme(std::string_view uri) noexcept;

/// `path` appended to `base`, which loses its query and its trailing slashes: a base keeps its own path, which
/// resolving a reference (RFC 3986) would drop.
std::string joined(std::string_view base, std::string_view path);

/// `uri` with the items behind the query it has. A fragment, which is never sent, gives way to them.
std::string withQuery(std::string uri, const std::vector<URLQueryItem>& items);

}  // namespace ZAK
