#pragma once

#include "http/CurlSettings.hpp"
#include "http/CurlSockets.hpp"
#include "http/ResponseHead.hpp"

#include <zvapikit/http/Transport.hpp>

#include <curl/curl.h>

#include <optional>
#include <string>

namespace ZAK {

/// One exchange of a request for an answer, without redirects. Used by one thread at a time.
class CurlTransfer {
 public:
  /// `fresh` makes the exchange use a connection of its own.
  explicit CurlTransfer(TransferRequest request_, bool fresh = false) : request(std::move(request_)), fresh_(fresh) {}
  CurlTransfer(const CurlTransfer&) = delete;
  CurlTransfer& operator=(const CurlTransfer&) = delete;

  /// Must not change between `begin` and `end`.
  TransferRequest request;
  /// Complete after `end`.
  TransferResult result;
  /// Where a 3xx answer points to, made absolute; absent when it is none or points nowhere.
  std::optional<std::string> redirectTarget;

  /// True when nothing was sent since the server had closed the kept connection that was to carry it.
  [[nodiscard]] bool foundStaleConnection() const noexcept { return foundStaleConnection_; }
  /// Null unless between `begin` and `end`.
  [[nodiscard]] CURL* easy() const noexcept { return easy_; }

  /// Prepares the handle, which is new or reset, to carry the exchange over one of the sockets. After an error only
  /// `end` may follow.
  [[nodiscard]] CURLcode begin(CURL* easy, const CurlSettings& settings, const CurlSockets& sockets);
  /// Takes the outcome from the handle, which is free afterwards.
  void end(CURLcode code);

 private:
  /// Called before each sending of what must not be sent twice. When a kept connection ends without an answer, libcurl
  /// sends the request again on another, whatever its method, though the server may have acted on it.
  static int onSend(void* transfer, char* remote, char* local, int remotePort, int localPort) noexcept;
  static std::size_t onHeader(char* data, std::size_t size, std::size_t count, void* transfer) noexcept;
  static std::size_t onBody(char* data, std::size_t size, std::size_t count, void* transfer) noexcept;
  bool append(std::string_view bytes);
  void collectMetrics();
  [[nodiscard]] HTTPError errorOf(CURLcode code) const;

  const bool fresh_;
  bool foundStaleConnection_ = false;
  CURL* easy_ = nullptr;
  const CurlSockets* sockets_ = nullptr;
  CurlList lines_;
  ResponseHead head_;
  std::size_t maximumBodySize_ = 0;
  bool bodyTooLarge_ = false;
};

}  // namespace ZAK
