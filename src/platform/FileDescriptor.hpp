#pragma once

#include <cerrno>
#include <filesystem>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace ZAK {

/// Owns a POSIX file descriptor.
class FileDescriptor {
 public:
  FileDescriptor() noexcept = default;
  explicit FileDescriptor(int descriptor) noexcept : descriptor_(descriptor) {}
  FileDescriptor(FileDescriptor&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
  }
  ~FileDescriptor() {
    if (descriptor_ >= 0) ::close(descriptor_);
  }

  /// Closes it early. False, with the reason in `errno`, when what was written may not have arrived.
  [[nodiscard]] bool close() noexcept { return ::close(std::exchange(descriptor_, -1)) == 0; }

  [[nodiscard]] int get() const noexcept { return descriptor_; }
  explicit operator bool() const noexcept { return descriptor_ >= 0; }

 private:
  int descriptor_ = -1;
};

/// \throws std::filesystem::filesystem_error always: `operation` on `path` failed with `error`.
[[noreturn]] inline void failOnFile(const char* operation, const std::filesystem::path& path, int error = errno) {
  throw std::filesystem::filesystem_error(operation, path, std::error_code(error, std::generic_category()));
}

}  // namespace ZAK
