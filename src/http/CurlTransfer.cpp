#include "http/CurlTransfer.hpp"

#include "http/TransferError.hpp"

#include <zvapikit/json/JSONDecoder.hpp>

#include <algorithm>

namespace ZAK {
namespace {

/// A length that a server only claims is no reason to set more memory aside than this.
constexpr std::size_t largestReserve = std::size_t{1} << 20;

template <class Value>
Value info(CURL* easy, CURLINFO key) {
  Value value{};
  curl_easy_getinfo(easy, key, &value);
  return value;
}

std::chrono::microseconds duration(CURL* easy, CURLINFO key) {
  return std::chrono::microseconds(info<curl_off_t>(easy, key));
}

std::uint64_t byteCount(CURL* easy, CURLINFO key) {
  return static_cast<std::uint64_t>(std::max<curl_off_t>(0, info<curl_off_t>(easy, key)));
}

std::string protocolName(long version) {
  switch (version) {
    case CURL_HTTP_VERSION_1_0:
      return "HTTP/1.0";
    case CURL_HTTP_VERSION_1_1:
      return "HTTP/1.1";
    case CURL_HTTP_VERSION_2_0:
      return "HTTP/2";
    default:
      return {};
  }
}

}  // namespace

CURLcode CurlTransfer::begin(CURL* easy, const CurlSettings& settings) {
  easy_ = easy;
  lines_ = headerLines(request);
  maximumBodySize_ = settings.options.maximumBodySize;
  curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, &CurlTransfer::onHeader);
  curl_easy_setopt(easy, CURLOPT_HEADERDATA, this);
  curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, &CurlTransfer::onBody);
  curl_easy_setopt(easy, CURLOPT_WRITEDATA, this);
  if (!isIdempotent(request.method)) {
    // Where this cannot be watched the transfer must not start.
    CURLcode code = curl_easy_setopt(easy, CURLOPT_PREREQFUNCTION, &CurlTransfer::onSend);
    if (code == CURLE_OK) code = curl_easy_setopt(easy, CURLOPT_PREREQDATA, this);
    if (code != CURLE_OK) return code;
  }
  return configure(easy, settings, request, lines_);
}

void CurlTransfer::end(CURLcode code) {
  auto& response = result.response;
  response.statusCode = head_.statusCode();
  if (code == CURLE_OK && head_.contradictsItself()) code = CURLE_WEIRD_SERVER_REPLY;
  response.headers = head_.takeHeaders();
  collectMetrics();
  // A connection that ends within the head is no error to libcurl.
  if (code == CURLE_OK && !head_.complete()) code = CURLE_PARTIAL_FILE;
  if (code != CURLE_OK) {
    response.error = errorOf(code);
  } else if (const char* target = info<const char*>(easy_, CURLINFO_REDIRECT_URL)) {
    redirectTarget = target;
  }
  result.answerStarted =
      head_.started() || (response.error && response.error->kind() == HTTPError::Kind::invalidAnswer);
  easy_ = nullptr;
}

HTTPError CurlTransfer::errorOf(CURLcode code) const {
  TransferFailure failure;
  failure.code = code;
  failure.statusCode = head_.statusCode();
  failure.systemError = static_cast<int>(info<long>(easy_, CURLINFO_OS_ERRNO));
  failure.verifyResult = info<long>(easy_, CURLINFO_SSL_VERIFYRESULT);
  failure.connected = head_.started() || info<curl_off_t>(easy_, CURLINFO_PRETRANSFER_TIME_T) > 0;
  failure.headTooLarge = head_.tooLarge() || (code == CURLE_OUT_OF_MEMORY && head_.started());
  failure.bodyTooLarge = bodyTooLarge_;
  return transferError(failure);
}

void CurlTransfer::collectMetrics() {
  auto& metrics = result.response.metrics;
  metrics.total = duration(easy_, CURLINFO_TOTAL_TIME_T);
  metrics.bytesSent = byteCount(easy_, CURLINFO_SIZE_UPLOAD_T);
  metrics.bytesReceived = byteCount(easy_, CURLINFO_SIZE_DOWNLOAD_T);
  if (head_.started()) {
    metrics.firstByte = duration(easy_, CURLINFO_STARTTRANSFER_TIME_T);
    metrics.protocol = protocolName(info<long>(easy_, CURLINFO_HTTP_VERSION));
  }
  metrics.reusedConnection = head_.started() && info<long>(easy_, CURLINFO_NUM_CONNECTS) == 0;
  if (metrics.reusedConnection) return;
  metrics.nameLookup = duration(easy_, CURLINFO_NAMELOOKUP_TIME_T);
  metrics.connect = duration(easy_, CURLINFO_CONNECT_TIME_T);
  metrics.secureConnect = duration(easy_, CURLINFO_APPCONNECT_TIME_T);
}

int CurlTransfer::onSend(void* transfer, char*, char*, int, int) noexcept {
  auto& self = *static_cast<CurlTransfer*>(transfer);
  // Counts what a proxy was asked as well, so that only what is added to it from here on is the request's.
  const long sent = info<long>(self.easy_, CURLINFO_REQUEST_SIZE);
  if (!self.sentAtFirst_) self.sentAtFirst_ = sent;
  return sent > *self.sentAtFirst_ ? CURL_PREREQFUNC_ABORT : CURL_PREREQFUNC_OK;
}

std::size_t CurlTransfer::onHeader(char* data, std::size_t size, std::size_t count, void* transfer) noexcept {
  auto& head = static_cast<CurlTransfer*>(transfer)->head_;
  head.add({data, size * count});
  return head.tooLarge() ? 0 : size * count;
}

std::size_t CurlTransfer::onBody(char* data, std::size_t size, std::size_t count, void* transfer) noexcept {
  return static_cast<CurlTransfer*>(transfer)->append({data, size * count}) ? size * count : 0;
}

bool CurlTransfer::append(std::string_view bytes) {
  auto& body = result.response.body;
  bodyTooLarge_ = bytes.size() > maximumBodySize_ - body.size();
  if (bodyTooLarge_) return false;
  if (body.empty()) {
    body.reserve(std::min<std::uint64_t>(byteCount(easy_, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T),
                                         std::min(largestReserve, maximumBodySize_)) +
                 JSONBody::wantedPadding);
  }
  body.append(bytes);
  return true;
}

}  // namespace ZAK
