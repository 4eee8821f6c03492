#include "platform/FileReplacement.hpp"

#include "platform/RandomText.hpp"

#include <algorithm>
#include <climits>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace ZAK {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t randomDigits = 16;
constexpr std::string_view ending = ".tmp";
/// The dots before and behind the name, the digits, and the ending.
constexpr std::size_t decoration = 2 + randomDigits + ending.size();
/// So much is written before the disk is set to work on it, so that syncing at the end does not take long.
constexpr std::uint64_t writebackStep = std::uint64_t{8} << 20;

/// A name that leaves no room for the rest is shortened: files that then share it are told apart by their locks.
std::string temporaryPrefix(std::string_view name) {
  return "." + std::string(name.substr(0, NAME_MAX - decoration)) + ".";
}

bool isTemporary(std::string_view file, std::string_view prefix) {
  if (file.size() != prefix.size() + randomDigits + ending.size()) return false;
  return file.starts_with(prefix) && file.ends_with(ending) &&
         file.substr(prefix.size(), randomDigits).find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

FileDescriptor opened(const fs::path& destination) {
  const fs::path directory = destination.has_parent_path() ? destination.parent_path() : fs::path(".");
  FileDescriptor descriptor(::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!descriptor) failOnFile("opening the directory of a file", destination);
  return descriptor;
}

}  // namespace

FileReplacement::FileReplacement(const fs::path& destination)
    : FileReplacement(opened(destination), destination.filename(), destination) {}

FileReplacement::FileReplacement(FileDescriptor directory, std::string name)
    : FileReplacement(std::move(directory), name, fs::path(name)) {}

FileReplacement::FileReplacement(FileDescriptor directory, std::string name, fs::path destination)
    : directory_(std::move(directory)), name_(std::move(name)), destination_(std::move(destination)) {
  struct stat status {};
  const bool exists = ::fstatat(directory_.get(), name_.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
  if (name_.empty() || name_ == "." || name_ == ".." || (exists && S_ISDIR(status.st_mode))) {
    failOnFile("replacing a file", destination_, EISDIR);
  }
  if (name_.size() > NAME_MAX) failOnFile("replacing a file", destination_, ENAMETOOLONG);
  removeAbandoned(directory_, name_);
  create();
}

FileReplacement::~FileReplacement() { unlink(); }

void FileReplacement::create() {
  for (;;) {
    std::string temporary = temporaryPrefix(name_) + randomText(randomDigits) + std::string(ending);
    file_ = FileDescriptor(
        ::openat(directory_.get(), temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!file_) failOnFile("creating a temporary file", destination_);
    // Where the file system knows no locks, nobody takes this file for abandoned either.
    const bool taken = ::flock(file_.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    struct stat status {};
    if (::fstat(file_.get(), &status) != 0) failOnFile("looking at a temporary file", destination_);
    // Another writer may have found the file before it was locked: then it is gone, or about to go.
    if (taken || status.st_nlink == 0) continue;
    temporary_ = std::move(temporary);
    return;
  }
}

void FileReplacement::write(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(file_.get(), bytes.data(), bytes.size());
    if (written < 0) {
      if (errno == EINTR) continue;
      failOnFile("writing a file", destination_);
    }
    bytes.remove_prefix(static_cast<std::size_t>(written));
    unsynced_ += static_cast<std::uint64_t>(written);
  }
  if (unsynced_ < writebackStep) return;
  unsynced_ = 0;
  ::sync_file_range(file_.get(), 0, 0, SYNC_FILE_RANGE_WRITE);
}

void FileReplacement::replace() {
  close();
  if (::renameat(directory_.get(), temporary_.c_str(), directory_.get(), name_.c_str()) != 0) {
    failOnFile("replacing a file", destination_);
  }
  temporary_.clear();
  syncDirectory();
}

bool FileReplacement::createNew() {
  close();
  const bool created = ::linkat(directory_.get(), temporary_.c_str(), directory_.get(), name_.c_str(), 0) == 0;
  if (!created && errno != EEXIST) failOnFile("creating a file", destination_);
  unlink();
  syncDirectory();
  return created;
}

void FileReplacement::close() {
  if (::fsync(file_.get()) != 0) failOnFile("writing a file", destination_);
  // The lock must outlast the closing: until the file has its name, others could take it for abandoned.
  lock_ = FileDescriptor(::fcntl(file_.get(), F_DUPFD_CLOEXEC, 0));
  if (!lock_ || !file_.close()) failOnFile("writing a file", destination_);
}

void FileReplacement::syncDirectory() const {
  // Some file systems cannot sync a directory, and say so.
  if (::fsync(directory_.get()) != 0 && errno != EINVAL) failOnFile("writing a directory", destination_);
}

void FileReplacement::unlink() noexcept {
  if (!temporary_.empty()) ::unlinkat(directory_.get(), temporary_.c_str(), 0);
  temporary_.clear();
}

void FileReplacement::removeAbandoned(const FileDescriptor& directory, const std::string& name) {
  const std::string prefix = temporaryPrefix(name);
  std::error_code ignored;
  const fs::path place = "/proc/self/fd/" + std::to_string(directory.get());
  for (fs::directory_iterator entry(place, ignored), end; entry != end; entry.increment(ignored)) {
    const std::string file = entry->path().filename();
    if (!isTemporary(file, prefix)) continue;
    // For writing, since some network file systems lock nothing else.
    const FileDescriptor found(::openat(directory.get(), file.c_str(), O_WRONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (found && ::flock(found.get(), LOCK_EX | LOCK_NB) == 0) ::unlinkat(directory.get(), file.c_str(), 0);
  }
}

}  // namespace ZAK
