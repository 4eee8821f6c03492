#include "platform/PrivateFiles.hpp"

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <fcntl.h>
#include <random>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace ZAK {
namespace {

namespace fs = std::filesystem;

/// A temporary file this old has lost its writer.
constexpr auto abandonedAfter = std::chrono::minutes(1);

[[noreturn]] void fail(const char* operation, int error = errno) {
  throw std::system_error(error, std::generic_category(), operation);
}

/// `link/` and `link/.` would follow the link.
fs::path withoutTrailingSlash(fs::path path) {
  while (path.has_relative_path() && (!path.has_filename() || path.filename() == ".")) path = path.parent_path();
  return path;
}

void makeDirectories(const fs::path& path) {
  if (::mkdir(path.c_str(), 0700) == 0 || errno == EEXIST) return;
  if (errno != ENOENT || !path.has_parent_path() || path.parent_path() == path) fail("creating a directory");
  makeDirectories(path.parent_path());
  if (::mkdir(path.c_str(), 0700) != 0 && errno != EEXIST) fail("creating a directory");
}

void writeAll(int descriptor, std::string_view content) {
  while (!content.empty()) {
    const ssize_t written = ::write(descriptor, content.data(), content.size());
    if (written >= 0) {
      content.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno != EINTR) {
      fail("writing a file");
    }
  }
}

std::string readAll(int descriptor, std::size_t maximumSize) {
  std::string content;
  std::array<char, 4096> chunk;
  for (;;) {
    const ssize_t count = ::read(descriptor, chunk.data(), chunk.size());
    if (count == 0) return content;
    if (count < 0) {
      if (errno != EINTR) fail("reading a file");
      continue;
    }
    content.append(chunk.data(), static_cast<std::size_t>(count));
    if (content.size() > maximumSize) fail("reading a file", EFBIG);
  }
}

std::string randomSuffix() {
  std::random_device random;
  std::array<char, 17> text{};
  std::snprintf(text.data(), text.size(), "%08x%08x", static_cast<unsigned>(random()), static_cast<unsigned>(random()));
  return text.data();
}

std::string temporaryPrefix(const std::string& name) { return "." + name + "."; }

}  // namespace

FileDescriptor::~FileDescriptor() {
  if (descriptor_ >= 0) ::close(descriptor_);
}

PrivateDirectory::PrivateDirectory(const fs::path& path)
    : descriptor_(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC)) {
  if (!descriptor_) fail("opening a directory");
  struct stat status {};
  if (::fstat(descriptor_.get(), &status) != 0) fail("looking at a directory");
  if (status.st_uid != ::geteuid()) fail("opening a directory of someone else", EPERM);
  if ((status.st_mode & 0077) != 0 && ::fchmod(descriptor_.get(), 0700) != 0) fail("closing a directory to others");
}

PrivateDirectory PrivateDirectory::create(const fs::path& path) {
  const fs::path directory = withoutTrailingSlash(path);
  makeDirectories(directory);
  return PrivateDirectory(directory);
}

std::optional<PrivateDirectory> PrivateDirectory::open(const fs::path& path) {
  try {
    return PrivateDirectory(withoutTrailingSlash(path));
  } catch (const std::system_error& error) {
    if (error.code() == std::errc::no_such_file_or_directory) return std::nullopt;
    throw;
  }
}

std::optional<std::string> PrivateDirectory::read(const std::string& name, std::size_t maximumSize) const {
  // Without O_NONBLOCK a pipe would hold up the opening.
  const FileDescriptor file{::openat(descriptor_.get(), name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC)};
  if (!file) {
    if (errno == ENOENT) return std::nullopt;
    fail("opening a file");
  }
  struct stat status {};
  if (::fstat(file.get(), &status) != 0) fail("looking at a file");
  if (!S_ISREG(status.st_mode) || status.st_uid != ::geteuid() || (status.st_mode & 0077) != 0) {
    fail("opening a file that is not the user's alone", EPERM);
  }
  return readAll(file.get(), maximumSize);
}

void PrivateDirectory::replace(const std::string& name, std::string_view content) const {
  const std::string temporary = writeTemporary(name, content);
  if (::renameat(descriptor_.get(), temporary.c_str(), descriptor_.get(), name.c_str()) != 0) {
    const int error = errno;
    ::unlinkat(descriptor_.get(), temporary.c_str(), 0);
    fail("replacing a file", error);
  }
  sync();
}

bool PrivateDirectory::createNew(const std::string& name, std::string_view content) const {
  const std::string temporary = writeTemporary(name, content);
  const int result = ::linkat(descriptor_.get(), temporary.c_str(), descriptor_.get(), name.c_str(), 0);
  const int error = errno;
  ::unlinkat(descriptor_.get(), temporary.c_str(), 0);
  if (result != 0 && error != EEXIST) fail("creating a file", error);
  sync();
  return result == 0;
}

void PrivateDirectory::remove(const std::string& name) const {
  removeAbandoned(name);
  if (::unlinkat(descriptor_.get(), name.c_str(), 0) != 0 && errno != ENOENT) fail("removing a file");
  sync();
}

std::string PrivateDirectory::writeTemporary(const std::string& name, std::string_view content) const {
  removeAbandoned(name);
  std::string temporary = temporaryPrefix(name) + randomSuffix();
  const FileDescriptor file{
      ::openat(descriptor_.get(), temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600)};
  if (!file) fail("creating a temporary file");
  try {
    writeAll(file.get(), content);
    if (::fsync(file.get()) != 0) fail("writing a file");
  } catch (...) {
    ::unlinkat(descriptor_.get(), temporary.c_str(), 0);
    throw;
  }
  return temporary;
}

/// A writer that died leaves its temporary file, and the secret in it.
void PrivateDirectory::removeAbandoned(const std::string& name) const {
  const std::string prefix = temporaryPrefix(name);
  const fs::path directory = "/proc/self/fd/" + std::to_string(descriptor_.get());
  std::error_code ignored;
  for (fs::directory_iterator entry(directory, ignored), end; entry != end; entry.increment(ignored)) {
    if (!entry->path().filename().native().starts_with(prefix)) continue;
    const auto written = entry->last_write_time(ignored);
    if (!ignored && fs::file_time_type::clock::now() - written > abandonedAfter) fs::remove(entry->path(), ignored);
  }
}

void PrivateDirectory::sync() const {
  if (::fsync(descriptor_.get()) != 0) fail("writing a directory");
}

}  // namespace ZAK
