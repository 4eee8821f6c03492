#include "Snippets.hpp"

namespace {

void configure(ZAK::Context& context) {
  context.servers.mobileProduction = "https://mobile.example.org/api";
  context.servers.authProduction = "https://auth.example.org";

  context.transport.caFile = "/etc/myapp/authorities.pem";
  context.transport.proxy = "http://proxy.example.org:3128";
  context.transport.connectTo = {{"mobile.example.org", 443, "10.0.0.7", 8443}};
  context.transport.connectTimeout = std::chrono::seconds(5);
  context.transport.stallTimeout = std::chrono::seconds(30);
  context.transport.maximumBodySize = std::size_t{16} << 20;
  context.transport.connectionsPerHost = 2;
}

}  // namespace

void deployment() {
  boost::asio::io_context io;
  ZAK::Context context;
  context.executor = io.get_executor();
  configure(context);
  (void)ZAK::MobileApiClient::create(context);
  for (const char* base : {"http://mobile.example.org", "https://user@mobile.example.org", "mobile.example.org"}) {
    context.servers.mobileProduction = base;
    bool refused = false;
    try {
      (void)ZAK::MobileApiClient::create(context);
    } catch (const std::invalid_argument&) {
      refused = true;
    }
    require(refused, base);
  }
}
