#include "Hosts.hpp"

#include <zvapikit/core/Servers.hpp>
#include <zvapikit/json/URL.hpp>

#include <algorithm>
#include <stdexcept>

namespace ZAK {
namespace {

Site siteOf(const std::string& base, EmulatorServer server, EmulatorEnvironment environment) {
  const auto url = URL::parse(base);
  if (!url) throw std::logic_error("the kit was built with a base URL that is none: " + base);
  std::string path = url->path();
  while (path.ends_with('/')) path.pop_back();
  return Site{url->host(), std::move(path), server, environment};
}

std::vector<Site> makeSites() {
  const Servers servers;
  const auto sandbox = EmulatorEnvironment::sandbox;
  const auto production = EmulatorEnvironment::production;
  return {siteOf(servers.mobileProduction, EmulatorServer::mobile, production),
          siteOf(servers.mobileSandbox, EmulatorServer::mobile, sandbox),
          siteOf(servers.authProduction, EmulatorServer::authentication, production),
          siteOf(servers.authSandbox, EmulatorServer::authentication, sandbox),
          Site{std::string(storageHost), "/zolvi-photos", EmulatorServer::storage, production},
          Site{std::string(storageHost), "/zolvi-photos-dev", EmulatorServer::storage, sandbox}};
}

}  // namespace

const std::vector<Site>& sites() {
  static const std::vector<Site> all = makeSites();
  return all;
}

std::vector<std::string> hosts() {
  std::vector<std::string> names;
  for (const Site& site : sites()) {
    if (std::find(names.begin(), names.end(), site.host) == names.end()) names.push_back(site.host);
  }
  return names;
}

}  // namespace ZAK
