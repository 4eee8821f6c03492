#include "platform/Environment.hpp"
#include "platform/PrivateFiles.hpp"

#include <zvapikit/platform/Directories.hpp>

#include <algorithm>
#include <pwd.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace ZAK {
namespace {

namespace fs = std::filesystem;

/// An identifier as one component of a path.
std::string pathComponent(std::string identifier) {
  std::replace(identifier.begin(), identifier.end(), '/', '_');
  return identifier == "." || identifier == ".." ? "unknown" : identifier;
}

std::string accountHome() {
  std::vector<char> buffer(16 * 1024);
  passwd entry{};
  passwd* found = nullptr;
  if (::getpwuid_r(::geteuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || found == nullptr) return {};
  return found->pw_dir;
}

}  // namespace

DirectoryEnvironment DirectoryEnvironment::current() {
  DirectoryEnvironment environment{.xdgDataHome = environmentValue("XDG_DATA_HOME"),
                                   .home = environmentValue("HOME"),
                                   .tmpdir = environmentValue("TMPDIR"),
                                   .user = ::geteuid()};
  if (environment.home.empty()) environment.home = accountHome();
  return environment;
}

fs::path DirectoryEnvironment::dataHome() const {
  if (xdgDataHome.starts_with('/')) return xdgDataHome;
  return home.empty() ? fs::path{} : fs::path(home) / ".local/share";
}

Directories Directories::resolved(const BundleInfo& bundle, const DirectoryEnvironment& environment) const {
  const std::string identifier = pathComponent(bundle.sanitized().identifier);
  Directories result = *this;
  if (result.documents.empty()) {
    const fs::path base = environment.dataHome();
    if (!base.empty()) result.documents = base / identifier / "Documents";
  }
  if (result.temporary.empty()) {
    const fs::path base = environment.tmpdir.starts_with('/') ? environment.tmpdir : "/tmp";
    result.temporary = base / ("zvapikit-" + std::to_string(environment.user) + "-" + identifier);
  }
  return result;
}

void Directories::createPrivate(const fs::path& directory) {
  try {
    static_cast<void>(PrivateDirectory::create(directory));
  } catch (const std::system_error& error) {
    throw fs::filesystem_error(error.what(), directory, error.code());
  }
}

}  // namespace ZAK
