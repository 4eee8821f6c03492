#pragma once

#include "http/CurlSettings.hpp"
#include "http/ResponseHead.hpp"

#include <zvapikit/http/Transport.hpp>

#include <curl/curl.h>

#include <optional>
#include <string>

namespace ZAK {

/// One exchange of a request for an answer, without redirects. Used by one thread at a time.
class CurlTransfer {
 public:
  explicit CurlTransfer(TransferRequest request_) : request(std::move(request_)) {}
  CurlTransfer(const CurlTransfer&) = delete;
  CurlTransfer& operator=(const CurlTransfer&) = delete;

  /// Must not change between `begin` and `end`.
  TransferRequest request;
  /// Complete after `end`.
  TransferResult result;
  /// Where a 3xx answer points to, made absolute; absent when it is none or points nowhere.
  std::optional<std::string> redirectTarget;

  /// Null unless between `begin` and `end`.
  [[nodiscard]] CURL* easy() const noexcept { return easy_; }

  /// Prepares the handle, which is new or reset, to carry the exchange. After an error only `end` may follow.
  [[nodiscard]] CURLcode begin(CURL* easy, const CurlSettings& settings);
  /// Takes the outcome from the handle, which is free afterwards.
  void end(CURLcode code);

 private:
  /// Called before each sending. When a connection that was used before ends without an answer, libcurl sends the
  /// request on another, whatever its method; the server may have acted on it by then.
  static int onSend(void* transfer, char* remote, char* local, int remotePort, int localPort) noexcept;
  static std::size_t onHeader(char* data, std::size_t size, std::size_t count, void* transfer) noexcept;
  static std::size_t onBody(char* data, std::size_t size, std::size_t count, void* transfer) noexcept;
  bool append(std::string_view bytes);
  void collectMetrics();
  [[nodiscard]] HTTPError errorOf(CURLcode code) const;

  CURL* easy_ = nullptr;
  CurlList lines_;
  ResponseHead head_;
  /// Bytes of requests that had gone out when this one was about to be sent for the first time.
  std::optional<long> sentAtFirst_;
  std::size_t maximumBodySize_ = 0;
  bool bodyTooLarge_ = false;
};

}  // namespace ZAK
