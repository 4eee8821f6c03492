#include "http/CurlTransfer.hpp"

#include "http/TransferError.hpp"

#include <zvapikit/json/JSONDecoder.hpp>
#include <zvapikit/json/URL.hpp>

#include <boost/algorithm/string/predicate.hpp>

#include <algorithm>
#include <cstdio>

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

/// What may be told of a URL: its host, and its port unless that is the usual one.
std::string serverOf(const std::string& text) {
  const auto url = URL::parse(text);
  if (!url) return {};
  std::string host = url->host();
  if (host.find(':') != std::string::npos) host = "[" + host + "]";
  const int port = url->port().value_or(443);
  return port == 443 ? host : host + ":" + std::to_string(port);
}

}  // namespace

CURLcode CurlTransfer::begin(CURL* easy, const CurlSettings& settings) {
  easy_ = easy;
  connectBy_ = std::chrono::steady_clock::now() + connectTimeout(settings.options, request);
  lines_ = headerLines(request);
  maximumBodySize_ = settings.options.maximumBodySize;
  hasProxy_ = settings.options.proxy.has_value();
  CURLcode code = openFiles();
  if (code == CURLE_OK) code = setCallbacks();
  return code == CURLE_OK ? configure(easy, settings, request, lines_) : code;
}

CURLcode CurlTransfer::openFiles() {
  try {
    if (request.body.isPresent() && bytesInMemory(request.body) == nullptr) reader_.emplace(request.body);
    if (request.destination) download_.emplace(*request.destination);
  } catch (const std::filesystem::filesystem_error& failure) {
    fileFailure_ = failure;
    return CURLE_FAILED_INIT;
  }
  return CURLE_OK;
}

CURLcode CurlTransfer::setCallbacks() {
  curl_easy_setopt(easy_, CURLOPT_HEADERFUNCTION, &CurlTransfer::onHeader);
  curl_easy_setopt(easy_, CURLOPT_HEADERDATA, this);
  curl_easy_setopt(easy_, CURLOPT_WRITEFUNCTION, &CurlTransfer::onBody);
  curl_easy_setopt(easy_, CURLOPT_WRITEDATA, this);
  if (reader_) {
    curl_easy_setopt(easy_, CURLOPT_READFUNCTION, &CurlTransfer::onRead);
    curl_easy_setopt(easy_, CURLOPT_READDATA, this);
    curl_easy_setopt(easy_, CURLOPT_SEEKFUNCTION, &CurlTransfer::onSeek);
    curl_easy_setopt(easy_, CURLOPT_SEEKDATA, this);
    curl_easy_setopt(easy_, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(reader_->size()));
  }
  if (isWatched()) {
    curl_easy_setopt(easy_, CURLOPT_NOPROGRESS, 0L);
    curl_easy_setopt(easy_, CURLOPT_XFERINFOFUNCTION, &CurlTransfer::onProgress);
    curl_easy_setopt(easy_, CURLOPT_XFERINFODATA, this);
    count(0, 0);
  }
  if (isIdempotent(request.method)) return CURLE_OK;
  // Where this cannot be watched the transfer must not start.
  const CURLcode code = curl_easy_setopt(easy_, CURLOPT_PREREQFUNCTION, &CurlTransfer::onSend);
  return code == CURLE_OK ? curl_easy_setopt(easy_, CURLOPT_PREREQDATA, this) : code;
}

void CurlTransfer::end(CURLcode code) {
  auto& response = result.response;
  response.statusCode = head_.statusCode();
  if (code == CURLE_OK && head_.contradictsItself()) code = CURLE_WEIRD_SERVER_REPLY;
  collectMetrics();
  count(response.metrics.bytesSent, response.metrics.bytesReceived);
  response.headers = head_.takeHeaders();
  // A connection that ends within the head is no error to libcurl.
  if (code == CURLE_OK && !head_.complete()) code = CURLE_PARTIAL_FILE;
  if (code == CURLE_OK && request.yieldsFile(response.statusCode)) code = keepDownload();
  download_.reset();
  if (code != CURLE_OK) {
    response.error = errorOf(code);
  } else if (const char* target = info<const char*>(easy_, CURLINFO_REDIRECT_URL)) {
    redirectTarget = target;
  }
  result.answerStarted =
      head_.started() || (response.error && response.error->kind() == HTTPError::Kind::invalidAnswer);
  easy_ = nullptr;
  ended_ = true;
}

CURLcode CurlTransfer::keepDownload() {
  auto& response = result.response;
  if (response.statusCode.code() == 206 && !request.headers.contains("Range")) return CURLE_WEIRD_SERVER_REPLY;
  // A body that ends with the connection may have been cut short: libcurl does not tell whether TLS was ended first.
  // A length or a coding that the server names is no end either where libcurl cannot go by it.
  const bool saysItsEnd =
      info<curl_off_t>(easy_, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T) >= 0 || response.metrics.protocol == "HTTP/2" ||
      boost::algorithm::iends_with(response.headers.value("Transfer-Encoding").value_or(""), "chunked");
  if (!saysItsEnd) return CURLE_WEIRD_SERVER_REPLY;
  try {
    download_->replace();
    response.file = request.destination;
    return CURLE_OK;
  } catch (const std::filesystem::filesystem_error& failure) {
    fileFailure_ = failure;
    return CURLE_WRITE_ERROR;
  }
}

void CurlTransfer::count(std::uint64_t sent, std::uint64_t received) {
  if (const std::string* bytes = bytesInMemory(request.body)) {
    counts_.sent = {sent, bytes->size()};
  } else if (reader_) {
    counts_.sent = {sent, reader_->size()};
  }
  if (!head_.complete() || !head_.statusCode().isSuccess()) return;
  const auto total = info<curl_off_t>(easy_, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T);
  counts_.received = {received, total < 0 ? std::nullopt : std::optional(static_cast<std::uint64_t>(total))};
}

bool CurlTransfer::connected() const {
  return head_.started() || info<curl_off_t>(easy_, CURLINFO_PRETRANSFER_TIME_T) > 0;
}

HTTPError CurlTransfer::errorOf(CURLcode code) const {
  if (fileFailure_) return fileError(*fileFailure_, head_.statusCode());
  TransferFailure failure;
  failure.code = code;
  failure.statusCode = head_.statusCode();
  failure.server = serverOf(request.url);
  failure.hasProxy = hasProxy_;
  failure.systemError = static_cast<int>(info<long>(easy_, CURLINFO_OS_ERRNO));
  failure.verifyResult = info<long>(easy_, CURLINFO_SSL_VERIFYRESULT);
  failure.connected = connected();
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

std::size_t CurlTransfer::onRead(char* room, std::size_t size, std::size_t count, void* transfer) noexcept {
  auto& self = *static_cast<CurlTransfer*>(transfer);
  try {
    return self.reader_->read({room, size * count});
  } catch (const std::filesystem::filesystem_error& failure) {
    self.fileFailure_ = failure;
    return CURL_READFUNC_ABORT;
  }
}

int CurlTransfer::onSeek(void* transfer, curl_off_t offset, int origin) noexcept {
  if (offset != 0 || origin != SEEK_SET) return CURL_SEEKFUNC_CANTSEEK;
  static_cast<CurlTransfer*>(transfer)->reader_->rewind();
  return CURL_SEEKFUNC_OK;
}

int CurlTransfer::onProgress(void* transfer, curl_off_t, curl_off_t received, curl_off_t, curl_off_t sent) noexcept {
  static_cast<CurlTransfer*>(transfer)->count(static_cast<std::uint64_t>(sent), static_cast<std::uint64_t>(received));
  return 0;
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
  if (request.yieldsFile(head_.statusCode())) {
    try {
      download_->write(bytes);
      return true;
    } catch (const std::filesystem::filesystem_error& failure) {
      fileFailure_ = failure;
      return false;
    }
  }
  auto& body = result.response.body;
  bodyTooLarge_ = bytes.size() > maximumBodySize_ - body.size();
  if (bodyTooLarge_) return false;
  // Always with room to spare for the decoder, also where the length was not announced, or only that of packed bytes.
  std::size_t wanted = body.size() + bytes.size();
  if (body.empty()) {
    const std::uint64_t announced = byteCount(easy_, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T);
    wanted =
        std::max<std::size_t>(wanted, std::min<std::uint64_t>(announced, std::min(largestReserve, maximumBodySize_)));
  }
  wanted += JSONBody::wantedPadding;
  if (wanted > body.capacity()) body.reserve(std::max(wanted, 2 * body.capacity()));
  body.append(bytes);
  return true;
}

}  // namespace ZAK
