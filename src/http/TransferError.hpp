#pragma once

#include <zvapikit/http/HTTPError.hpp>

#include <curl/curl.h>

#include <filesystem>
#include <string>

namespace ZAK {

/// What is known of a transfer that libcurl ended with an error.
struct TransferFailure {
  CURLcode code = CURLE_OK;
  /// 0 when no answer came.
  HTTPStatusCode statusCode{};
  /// Host of the request's URL, and port unless it is the usual one.
  std::string server{};
  /// The server was to be reached through a proxy.
  bool hasProxy = false;
  /// `errno` of the failed system call, 0 when there was none.
  int systemError = 0;
  /// OpenSSL's X509_V_ERR_...; X509_V_OK or X509_V_ERR_UNSPECIFIED when the chain was not what failed.
  long verifyResult = 0;
  /// The connection stood, TLS included, and the request was being sent or answered.
  bool connected = false;
  /// The body was longer than allowed.
  bool bodyTooLarge = false;
  /// The headers were longer than allowed. A single line of such a length is lack of memory to libcurl.
  bool headTooLarge = false;
};

[[nodiscard]] HTTPError transferError(const TransferFailure& failure);

/// The error of a transfer whose file to send or to fill failed. Does not name the file, which its underlying error
/// does.
[[nodiscard]] HTTPError fileError(const std::filesystem::filesystem_error& failure, HTTPStatusCode status);

}  // namespace ZAK
