#include "http/CurlSettings.hpp"

#include "http/BodyReader.hpp"

#include <openssl/ssl.h>

#include <algorithm>
#include <initializer_list>
#include <string_view>
#include <utility>

namespace ZAK {
namespace {

using std::chrono::milliseconds;

/// Sets options until one fails.
class Setter {
 public:
  explicit Setter(CURL* easy) : easy_(easy) {}

  template <class Value>
  Setter& operator()(CURLoption option, Value value) {
    if (code_ == CURLE_OK) code_ = curl_easy_setopt(easy_, option, value);
    return *this;
  }
  [[nodiscard]] CURLcode code() const noexcept { return code_; }

 private:
  CURL* easy_;
  CURLcode code_ = CURLE_OK;
};

/// SSLKEYLOGFILE must not make session keys reach the disk.
CURLcode shutKeyLog(CURL*, void* context, void*) noexcept {
  SSL_CTX_set_keylog_callback(static_cast<SSL_CTX*>(context), nullptr);
  return CURLE_OK;
}

std::string port(int number) { return number == 0 ? std::string() : std::to_string(number); }

std::string bracketed(const std::string& host) {
  return host.find(':') != std::string::npos && host.front() != '[' ? '[' + host + ']' : host;
}

bool isBlank(std::string_view text) { return text.find_first_not_of(" \t") == std::string_view::npos; }

/// Everything that an environment variable or a default of libcurl's could steer is set or shut here.
void setTrust(Setter& set, const CurlSettings& settings) {
  set(CURLOPT_PROTOCOLS_STR, "https");
  set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
  set(CURLOPT_SSL_CTX_FUNCTION, &shutKeyLog);
  set(CURLOPT_NETRC, static_cast<long>(CURL_NETRC_IGNORED));
  set(CURLOPT_DISALLOW_USERNAME_IN_URL, 1L);
  // Without a directory of authorities libcurl reads the file once and keeps it.
  set(CURLOPT_CAPATH, static_cast<const char*>(nullptr));
  set(CURLOPT_PROXY_CAPATH, static_cast<const char*>(nullptr));
  if (!settings.caFile.empty()) {
    set(CURLOPT_CAINFO, settings.caFile.c_str());
    if (settings.options.proxy) set(CURLOPT_PROXY_CAINFO, settings.caFile.c_str());
  }
  set(CURLOPT_PROXY, settings.options.proxy.value_or("").c_str());
  set(CURLOPT_NOPROXY, "");
  set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
}

milliseconds stallTimeout(const TransportOptions& options, const TransferRequest& request) {
  return std::max(request.timeout.value_or(options.stallTimeout), milliseconds(1));
}

void setTimes(Setter& set, const CurlSettings& settings, const TransferRequest& request) {
  const auto stall = stallTimeout(settings.options, request);
  const auto connect = connectTimeout(settings.options, request);
  set(CURLOPT_LOW_SPEED_LIMIT, 1L);
  set(CURLOPT_LOW_SPEED_TIME, static_cast<long>(std::chrono::ceil<std::chrono::seconds>(stall).count()));
  set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(connect.count()));
}

void setMethod(Setter& set, const TransferRequest& request) {
  const std::string method(rawValue(request.method));
  const bool sendsLength =
      request.method == HTTPMethod::post || request.method == HTTPMethod::put || request.method == HTTPMethod::patch;
  if (request.method == HTTPMethod::head) {
    set(CURLOPT_NOBODY, 1L);
  } else if (request.body.isPresent() || sendsLength) {
    set(CURLOPT_POST, 1L);
    set(CURLOPT_CUSTOMREQUEST, method.c_str());
    const std::string* bytes = bytesInMemory(request.body);
    if (bytes == nullptr && request.body.isPresent()) return;
    set(CURLOPT_POSTFIELDS, bytes == nullptr ? "" : bytes->c_str());
    set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(bytes == nullptr ? 0 : bytes->size()));
  } else {
    set(CURLOPT_HTTPGET, 1L);
    if (request.method != HTTPMethod::get) set(CURLOPT_CUSTOMREQUEST, method.c_str());
  }
}

}  // namespace

CurlList::CurlList(const std::vector<Parts>& strings) : nodes_(strings.size()) {
  std::size_t size = 0;
  for (const Parts& parts : strings) {
    for (const std::string_view part : parts) size += part.size();
  }
  characters_.resize(size + strings.size());
  char* end = characters_.data();
  for (std::size_t i = 0; i < nodes_.size(); ++i) {
    nodes_[i] = {end, i + 1 < nodes_.size() ? &nodes_[i + 1] : nullptr};
    for (const std::string_view part : strings[i]) end += part.copy(end, part.size());
    *end++ = '\0';
  }
}

CurlSettings::CurlSettings(TransportOptions options_) : options(std::move(options_)) {
  const char* systemFile = curl_version_info(CURLVERSION_NOW)->cainfo;
  if (options.caFile) {
    caFile = options.caFile->string();
  } else if (systemFile != nullptr) {
    caFile = systemFile;
  }
  std::vector<std::string> entries;
  entries.reserve(options.connectTo.size());
  for (const auto& entry : options.connectTo) {
    entries.push_back(bracketed(entry.host) + ':' + port(entry.port) + ':' + bracketed(entry.toHost) + ':' +
                      port(entry.toPort));
  }
  std::vector<CurlList::Parts> lines;
  lines.reserve(entries.size());
  for (const auto& entry : entries) lines.push_back({entry});
  connectTo = CurlList(lines);
}

milliseconds connectTimeout(const TransportOptions& options, const TransferRequest& request) {
  return std::clamp(options.connectTimeout, milliseconds(1), stallTimeout(options, request));
}

CurlList headerLines(const TransferRequest& request) {
  constexpr std::array shut = {"Accept", "Accept-Encoding", "Expect", "Content-Type"};
  std::vector<CurlList::Parts> lines;
  lines.reserve(request.headers.elements().size() + shut.size());
  for (const auto& element : request.headers.elements()) {
    // `name:` would drop the field; `name;` sends it without a value.
    if (isBlank(element.value)) {
      lines.push_back({element.name, ";"});
    } else {
      lines.push_back({element.name, ": ", element.value});
    }
  }
  for (const char* name : shut) {
    if (!request.headers.contains(name)) lines.push_back({name, ":"});
  }
  return CurlList(lines);
}

CURLcode configure(CURL* easy, const CurlSettings& settings, const TransferRequest& request, const CurlList& lines) {
  Setter set(easy);
  setTrust(set, settings);
  setTimes(set, settings, request);
  setMethod(set, request);
  set(CURLOPT_URL, request.url.c_str());
  set(CURLOPT_PATH_AS_IS, 1L);
  set(CURLOPT_FOLLOWLOCATION, 0L);
  set(CURLOPT_HTTPHEADER, lines.get());
  set(CURLOPT_ACCEPT_ENCODING, "");
  set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_2TLS));
  set(CURLOPT_PIPEWAIT, 1L);
  set(CURLOPT_CONNECT_TO, settings.connectTo.get());
  set(CURLOPT_NOSIGNAL, 1L);
  // Removing a handle whose name is being resolved would otherwise wait for the resolver.
  set(CURLOPT_QUICK_EXIT, 1L);
  return set.code();
}

}  // namespace ZAK
