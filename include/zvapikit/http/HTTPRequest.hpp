#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/http/HTTPBody.hpp>
#include <zvapikit/http/HTTPHeaders.hpp>
#include <zvapikit/http/HTTPMethod.hpp>
#include <zvapikit/http/HTTPProgress.hpp>
#include <zvapikit/http/URLQueryItem.hpp>
#include <zvapikit/json/URL.hpp>

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ZAK {

/// One request, before it is joined to a client's base URL and default headers.
///
/// Thread safety: as a standard container.
class ZVAPIKIT_API HTTPRequest {
 public:
  /// Values of the template's placeholders, by name.
  using Variables = std::vector<std::pair<std::string, std::string>>;

  /// A request below the client's base URL. `uri` is a path, with or without a leading `/`, that may hold
  /// placeholders `{name}` (RFC 6570, simple expansion): each becomes its percent-encoded variable, or nothing when
  /// there is no such variable. It may also be an absolute https URL, which is then sent as it is.
  explicit HTTPRequest(HTTPMethod method, std::string uri, Variables variables = {});
  /// A request to an absolute URL, outside any base.
  HTTPRequest(HTTPMethod method, const URL& url);

  /// Decides also whether the request may be sent again after a failed transfer: see `isIdempotent`.
  HTTPMethod method;
  /// Sent after the client's default headers, replacing those of the same name. A Content-Type here replaces the
  /// body's own.
  HTTPHeaders headers;
  /// What is sent; none by default.
  HTTPBody body;
  /// Longest time without progress; absent means the transport's default, `TransportOptions::stallTimeout`.
  std::optional<std::chrono::milliseconds> timeout;
  /// How often the request may be sent again, whatever the reasons. The first attempt is no retry. An authenticated
  /// `Client::fire` replaces it.
  int maxRetries = 0;
  /// How many redirects are followed (https only); absent means the client's default.
  std::optional<int> maxRedirects;
  /// Where the body of a 2xx answer goes, in place of memory: a file in a directory that exists. It is written beside
  /// its destination, hidden, and takes the place of an old file once it is whole and safe on disk, mode 0600; until
  /// then, and after any failure, cancellation or crash, the old one stays as it was. Its size is not bounded. It is
  /// written in small pieces on the transport's executor, which therefore waits for the disk. An answer that does not
  /// say where it ends (neither by a length nor by chunks nor by HTTP/2), or is a part that no Range header asked for,
  /// is not taken for whole. See also `HTTPResponse::file`. When it cannot be created nothing is sent, and the call
  /// ends with an `HTTPError` of kind `fileSystem`, as it does when a write fails.
  std::optional<std::filesystem::path> destination;
  /// Whom to tell of the bytes sent and received.
  HTTPProgress progress;

  /// Appends to the query, behind what the URI itself may hold. Names and values are percent-encoded when sent.
  void add(URLQueryItem queryItem);
  /// Appends a query parameter that has a value.
  void addParameter(std::string name, std::string value);
  /// What was added to the query so far, in order.
  [[nodiscard]] const std::vector<URLQueryItem>& queryItems() const noexcept { return queryItems_; }

  /// True when a variable is one dot or two: template expansion keeps them, and a server would climb the path by them.
  /// Such a request is never sent.
  [[nodiscard]] bool climbsPath() const noexcept;

  /// The URI with its variables filled in, without the query items.
  [[nodiscard]] std::string expandedURI() const;
  /// True when the URI is an absolute URL rather than a path below a base.
  [[nodiscard]] bool isAbsolute() const noexcept;

  /// `GET /content/posts/p1?x=y`: the path below the base with its query; an absolute URL without its query, which may
  /// hold a signature. Never fails.
  [[nodiscard]] std::string description() const;

 private:
  std::string uri_;
  Variables variables_;
  std::vector<URLQueryItem> queryItems_;
};

}  // namespace ZAK
