#pragma once

#include <zvapikit/emulator/EmulatorRequest.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace ZAK {

/// Where a server lives: requests for the host whose path is the base or below it.
struct Site {
  std::string host;
  std::string base;
  EmulatorServer server;
  EmulatorEnvironment environment;
};

inline constexpr std::string_view storageHost = "storage.zolvi.example";

/// The servers that the kit is built for, and the storage bucket.
const std::vector<Site>& sites();

/// The hosts of all sites, each once.
std::vector<std::string> hosts();

}  // namespace ZAK
