#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace zvkit {

struct CallOptions {
  std::string operation;
  std::string arguments = "{}";
  std::string environment = "sandbox";
  std::string connectTo;
  std::filesystem::path caFile;
  std::optional<std::string> firebaseToken;
  std::string keychain;  ///< empty: where the kit chooses
  bool verbose = false;
};

struct DemoOptions {
  bool verbose = false;
};

struct EmulatorCommandOptions {
  int port = 0;
};

// Each yields the exit code: 0, or 1 when what was asked for failed. All throw `UsageError`.
int list();
int call(const CallOptions& options);
int demo(const DemoOptions& options);
int serve(const EmulatorCommandOptions& options);

}  // namespace zvkit
