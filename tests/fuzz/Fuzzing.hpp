#pragma once

#include <zvapikit/json/URL.hpp>

#include <curl/curl.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

/// One input. A claim that does not hold ends the process.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace ZAK::Fuzzing {

inline std::string_view text(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

inline void require(bool holds, std::string_view claim, std::string_view of = {}) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %.*s: %.*s\n", int(claim.size()), claim.data(), int(of.size()), of.data());
  std::abort();
}

/// Takes the text up to the next separator, which hardly any input needs for itself, off the front.
inline std::string takePiece(std::string_view& input) {
  constexpr char separator = '\x1e';
  const std::size_t end = std::min(input.find(separator), input.size());
  const std::string piece(input.substr(0, end));
  input.remove_prefix(std::min(end + 1, input.size()));
  return piece;
}

inline bool isVisibleASCII(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return c > ' ' && c < '\x7f'; });
}

inline int hexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  c = static_cast<char>(c | 0x20);
  return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

inline std::string percentDecoded(std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '%' && i + 2 < text.size() && hexDigit(text[i + 1]) >= 0 && hexDigit(text[i + 2]) >= 0) {
      result += static_cast<char>(hexDigit(text[i + 1]) * 16 + hexDigit(text[i + 2]));
      i += 2;
    } else {
      result += text[i];
    }
  }
  return result;
}

/// A URL as the transport's own parser reads it, which decides where a request goes.
struct SentURL {
  std::string host;
  std::string port;
  std::string path;
};

/// Absent when the transport would refuse the URL.
inline std::optional<SentURL> asSent(const std::string& url) {
  const std::unique_ptr<CURLU, decltype(&curl_url_cleanup)> handle(curl_url(), &curl_url_cleanup);
  if (curl_url_set(handle.get(), CURLUPART_URL, url.c_str(), 0) != CURLUE_OK) return std::nullopt;
  const auto part = [&](CURLUPart which, unsigned flags) {
    char* found = nullptr;
    if (curl_url_get(handle.get(), which, &found, flags) != CURLUE_OK) return std::string();
    std::string result(found);
    curl_free(found);
    return result;
  };
  SentURL sent{part(CURLUPART_HOST, 0), part(CURLUPART_PORT, CURLU_DEFAULT_PORT), part(CURLUPART_PATH, 0)};
  if (sent.host.starts_with('[')) sent.host = sent.host.substr(1, sent.host.size() - 2);
  std::transform(sent.host.begin(), sent.host.end(), sent.host.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c; });
  return sent;
}

}  // namespace ZAK::Fuzzing
