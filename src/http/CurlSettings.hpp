#pragma once

#include <zvapikit/http/Transport.hpp>
#include <zvapikit/http/TransportOptions.hpp>

#include <curl/curl.h>

#include <memory>
#include <string>

namespace ZAK {

/// libcurl's list of strings, owned.
class CurlList {
 public:
  void add(const std::string& text);
  [[nodiscard]] curl_slist* get() const noexcept { return list_.get(); }

 private:
  struct Free {
    void operator()(curl_slist* list) const noexcept { curl_slist_free_all(list); }
  };
  std::unique_ptr<curl_slist, Free> list_;
};

/// The options of a transport in the form that libcurl takes. Immutable; must outlive the transfers that use it.
struct CurlSettings {
  explicit CurlSettings(TransportOptions options_);

  TransportOptions options;
  /// Empty where libcurl has no file of authorities and none was given.
  std::string caFile;
  CurlList connectTo;
};

/// The lines for CURLOPT_HTTPHEADER: the request's own, and those that keep libcurl from adding some of itself.
[[nodiscard]] CurlList headerLines(const TransferRequest& request);

/// Sets everything but the callbacks for one request on a handle that is new or reset. `request`, `lines` and
/// `settings` must outlive the transfer. An option that could not be set is an error: the transfer must not start.
[[nodiscard]] CURLcode configure(CURL* easy, const CurlSettings& settings, const TransferRequest& request,
                                 const CurlList& lines);

}  // namespace ZAK
