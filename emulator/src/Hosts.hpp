#pragma once

#include <zvapikit/emulator/EmulatorRequest.hpp>

#include <array>
#include <string_view>

namespace ZAK {

/// Where a server lives: requests for the host whose path is the base or below it.
struct Site {
  std::string_view host;
  std::string_view base;
  EmulatorServer server;
  EmulatorEnvironment environment;
};

inline constexpr std::string_view storageHost = "storage.zolvi.example";

inline constexpr std::array<std::string_view, 5> hosts{"mobile.zolvi.example", "mobile-dev.zolvi.example",
                                                       "auth.zolvi.example", "auth-dev.zolvi.example", storageHost};

inline constexpr std::array<Site, 6> sites{{
    {hosts[0], "/api", EmulatorServer::mobile, EmulatorEnvironment::production},
    {hosts[1], "/main/api", EmulatorServer::mobile, EmulatorEnvironment::sandbox},
    {hosts[2], "", EmulatorServer::authentication, EmulatorEnvironment::production},
    {hosts[3], "/main", EmulatorServer::authentication, EmulatorEnvironment::sandbox},
    {storageHost, "/zolvi-photos", EmulatorServer::storage, EmulatorEnvironment::production},
    {storageHost, "/zolvi-photos-dev", EmulatorServer::storage, EmulatorEnvironment::sandbox},
}};

}  // namespace ZAK
