#pragma once

#include "http/BodyReader.hpp"
#include "http/CurlSettings.hpp"
#include "http/ResponseHead.hpp"
#include "http/TransferCounts.hpp"
#include "platform/FileReplacement.hpp"

#include <zvapikit/http/Transport.hpp>

#include <curl/curl.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
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
  /// Whether it has got a connection. Between `begin` and `end` only, as is `overdue`.
  [[nodiscard]] bool connected() const;
  /// Whether it has waited for a connection as long as connecting may take.
  [[nodiscard]] bool overdue() const { return std::chrono::steady_clock::now() >= connectBy_ && !connected(); }
  /// True after `end`.
  [[nodiscard]] bool ended() const noexcept { return ended_; }
  /// True when the request wants to know how far it has come.
  [[nodiscard]] bool isWatched() const noexcept { return request.progress.sent || request.progress.received; }
  /// How far it has come; kept up to date only when it is watched.
  [[nodiscard]] const TransferCounts& counts() const noexcept { return counts_; }

  /// Prepares the handle, which is new or reset, to carry the exchange, and the files that it reads and fills. After an
  /// error only `end` may follow.
  [[nodiscard]] CURLcode begin(CURL* easy, const CurlSettings& settings);
  /// Takes the outcome from the handle, which is free afterwards. Of a file that was to be filled there is by then all
  /// or no trace.
  void end(CURLcode code);

 private:
  [[nodiscard]] CURLcode openFiles();
  [[nodiscard]] CURLcode setCallbacks();
  /// Called before each sending. When a connection that was used before ends without an answer, libcurl sends the
  /// request on another, whatever its method; the server may have acted on it by then.
  static int onSend(void* transfer, char* remote, char* local, int remotePort, int localPort) noexcept;
  static std::size_t onRead(char* room, std::size_t size, std::size_t count, void* transfer) noexcept;
  static int onSeek(void* transfer, curl_off_t offset, int origin) noexcept;
  static std::size_t onHeader(char* data, std::size_t size, std::size_t count, void* transfer) noexcept;
  static std::size_t onBody(char* data, std::size_t size, std::size_t count, void* transfer) noexcept;
  static int onProgress(void* transfer, curl_off_t, curl_off_t received, curl_off_t, curl_off_t sent) noexcept;
  bool append(std::string_view bytes);
  [[nodiscard]] CURLcode keepDownload();
  void count(std::uint64_t sent, std::uint64_t received);
  void collectMetrics();
  [[nodiscard]] HTTPError errorOf(CURLcode code) const;

  CURL* easy_ = nullptr;
  std::chrono::steady_clock::time_point connectBy_;
  bool ended_ = false;
  CurlList lines_;
  ResponseHead head_;
  /// Present when the body is not simply in memory.
  std::optional<BodyReader> reader_;
  /// Present when the request has a destination, until `end`.
  std::optional<FileReplacement> download_;
  /// What a file of the above came to grief with.
  std::optional<std::filesystem::filesystem_error> fileFailure_;
  TransferCounts counts_;
  /// Bytes of requests that had gone out when this one was about to be sent for the first time.
  std::optional<long> sentAtFirst_;
  std::size_t maximumBodySize_ = 0;
  bool hasProxy_ = false;
  bool bodyTooLarge_ = false;
};

}  // namespace ZAK
