#pragma once

#include <zvapikit/http/Transport.hpp>
#include <zvapikit/http/TransportOptions.hpp>

#include <curl/curl.h>

#include <array>
#include <chrono>
#include <string>
#include <string_view>
#include <vector>

namespace ZAK {

/// A list of strings in the form that libcurl reads, in two pieces of memory rather than two a string.
class CurlList {
 public:
  /// What a string is joined of.
  using Parts = std::array<std::string_view, 3>;

  CurlList() = default;
  explicit CurlList(const std::vector<Parts>& strings);
  CurlList(CurlList&&) = default;
  CurlList& operator=(CurlList&&) = default;

  /// Null when the list is empty. Must not be changed, which libcurl's types do not say.
  [[nodiscard]] curl_slist* get() const noexcept {
    return nodes_.empty() ? nullptr : const_cast<curl_slist*>(nodes_.data());
  }

 private:
  // Vectors, since their content stays in its place when they are moved.
  std::vector<char> characters_;
  std::vector<curl_slist> nodes_;
};

/// The options of a transport in the form that libcurl takes. Immutable; must outlive the transfers that use it.
struct CurlSettings {
  explicit CurlSettings(TransportOptions options_);

  TransportOptions options;
  /// Empty where libcurl has no file of authorities and none was given.
  std::string caFile;
  CurlList connectTo;
};

/// How long a request may wait for a connection that is being made.
[[nodiscard]] std::chrono::milliseconds connectTimeout(const TransportOptions& options, const TransferRequest& request);

/// The lines for CURLOPT_HTTPHEADER: the request's own, and those that keep libcurl from adding some of itself.
[[nodiscard]] CurlList headerLines(const TransferRequest& request);

/// Sets everything but the callbacks, and the length of a body that has to be read, for one request on a handle that is
/// new or reset. `request`, `lines` and
/// `settings` must outlive the transfer. An option that could not be set is an error: the transfer must not start.
[[nodiscard]] CURLcode configure(CURL* easy, const CurlSettings& settings, const TransferRequest& request,
                                 const CurlList& lines);

}  // namespace ZAK
