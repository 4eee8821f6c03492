#pragma once

#include "platform/FileDescriptor.hpp"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace ZAK {

/// A directory, and files in it, that belong to the user alone. Links are never followed, in the directory's last
/// component nor in the files. All operations throw `std::system_error`.
class PrivateDirectory {
 public:
  /// Opens the directory after creating what is missing of it, mode 0700. One that exists must be the user's, and not
  /// one for all as /tmp is; group and others are taken off it.
  static PrivateDirectory create(const std::filesystem::path& path);
  /// Opens the directory under the same conditions; absent when there is none.
  static std::optional<PrivateDirectory> open(const std::filesystem::path& path);

  /// The bytes of a regular file that is the user's and closed to group and others; absent when there is none. A file
  /// longer than `maximumSize` is an error.
  [[nodiscard]] std::optional<std::string> read(const std::string& name, std::size_t maximumSize) const;

  /// Puts a whole new file, mode 0600, in the place of whatever has that name, or leaves that as it was.
  void replace(const std::string& name, std::string_view content) const;
  /// Creates the file whole; false, and nothing changed, when there is one already.
  [[nodiscard]] bool createNew(const std::string& name, std::string_view content) const;

  /// It is no error when there is none.
  void remove(const std::string& name) const;

 private:
  explicit PrivateDirectory(const std::filesystem::path& path);

  [[nodiscard]] FileDescriptor duplicate() const;

  FileDescriptor descriptor_;
};

}  // namespace ZAK
