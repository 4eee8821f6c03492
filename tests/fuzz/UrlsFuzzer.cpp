// URLs: what is taken stays as it is, and means to the transport what it means to the kit.
#include "fuzz/Fuzzing.hpp"

using ZAK::URL;
using ZAK::Fuzzing::isVisibleASCII;
using ZAK::Fuzzing::require;

namespace {

/// The transport writes numeric addresses in their usual form.
bool isNumeric(std::string_view host) { return host.find_first_not_of("0123456789abcdefx.:") == host.npos; }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::optional<URL> url = URL::parse(ZAK::Fuzzing::text(data, size));
  if (!url) return 0;
  const std::string& text = url->string();
  require(isVisibleASCII(text), "a URL is visible ASCII", text);
  require(URL::parse(text) == url, "a URL is read again as it is", text);

  const std::string scheme = url->scheme();
  require(std::none_of(scheme.begin(), scheme.end(), [](char c) { return c >= 'A' && c <= 'Z'; }), "lower case", text);
  require(text.starts_with(url->withoutQuery()), "what stands before the query is a prefix", text);
  require(url->withoutQuery().ends_with(url->path()), "the path ends what stands before the query", text);
  const std::string extension = url->pathExtension();
  require(extension.empty() || ZAK::Fuzzing::percentDecoded(url->path()).ends_with("." + extension),
          "an extension is the end of a path", text);
  const std::optional<int> port = url->port();
  require(!port || (*port >= 0 && *port <= 65535), "ports are sixteen bits", text);

  if (scheme != "https") return 0;
  require(!url->host().empty() && port.has_value(), "https has a host and a port", text);
  if (const auto sent = ZAK::Fuzzing::asSent(text)) {
    const bool numeric = isNumeric(sent->host) && isNumeric(url->host());
    require(numeric || sent->host == url->host(), "the transport sees the same host", text);
    require(sent->port == std::to_string(*port), "the transport sees the same port", text);
  }
  return 0;
}
