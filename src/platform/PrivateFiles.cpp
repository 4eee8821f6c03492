#include "platform/PrivateFiles.hpp"

#include "platform/FileReplacement.hpp"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace ZAK {
namespace {

namespace fs = std::filesystem;

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

}  // namespace

PrivateDirectory::PrivateDirectory(const fs::path& path)
    : descriptor_(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC)) {
  if (!descriptor_) fail("opening a directory");
  struct stat status {};
  if (::fstat(descriptor_.get(), &status) != 0) fail("looking at a directory");
  if (status.st_uid != ::geteuid()) fail("opening a directory of someone else", EPERM);
  // Such as /tmp, which everybody would miss if root closed it.
  if ((status.st_mode & S_ISVTX) != 0) fail("opening a directory that is there for all", EPERM);
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
  FileReplacement file(duplicate(), name);
  file.write(content);
  file.replace();
}

bool PrivateDirectory::createNew(const std::string& name, std::string_view content) const {
  FileReplacement file(duplicate(), name);
  file.write(content);
  return file.createNew();
}

void PrivateDirectory::remove(const std::string& name) const {
  FileReplacement::removeAbandoned(descriptor_, name);
  if (::unlinkat(descriptor_.get(), name.c_str(), 0) != 0 && errno != ENOENT) fail("removing a file");
  if (::fsync(descriptor_.get()) != 0) fail("writing a directory");
}

FileDescriptor PrivateDirectory::duplicate() const {
  FileDescriptor copy(::fcntl(descriptor_.get(), F_DUPFD_CLOEXEC, 0));
  if (!copy) fail("opening a directory");
  return copy;
}

}  // namespace ZAK
