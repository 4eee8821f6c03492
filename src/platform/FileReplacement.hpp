#pragma once

#include "platform/FileDescriptor.hpp"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace ZAK {

/// A new file that takes the place of another as a whole, or leaves that as it is.
///
/// Until then it is a hidden file of mode 0600 beside its destination, `.NAME.HHHHHHHHHHHHHHHH.tmp`, which goes away
/// with this object. A process that dies leaves it behind, and the next one that writes the same destination removes
/// it. Each writer holds a lock on its own file, so that the living are told from the dead, whatever their age and
/// process.
///
/// A link at the destination is replaced, never followed. All operations block for as long as the disk takes.
///
/// Errors: `std::filesystem::filesystem_error` that names the destination; the disk is full, the file too large
/// (where the process ignores SIGXFSZ), ... The old file is whole after each of them.
///
/// Thread safety: one thread at a time.
class FileReplacement {
 public:
  /// Creates the file in the directory of `destination`, which must exist and hold no directory of that name.
  explicit FileReplacement(const std::filesystem::path& destination);
  /// The same in an open directory. `name` is a single component.
  FileReplacement(FileDescriptor directory, std::string name);
  FileReplacement(const FileReplacement&) = delete;
  FileReplacement& operator=(const FileReplacement&) = delete;
  ~FileReplacement();

  /// Appends the bytes.
  void write(std::string_view bytes);

  /// Makes the file safe on disk and puts it in the place of whatever has its name. At most one of these two is called,
  /// once, and nothing after it.
  void replace();
  /// Makes the file safe on disk and gives it its name; false, and nothing changed, when there is such a file already.
  [[nodiscard]] bool createNew();

  /// Removes what dead writers of a file of that name have left in a directory. Never fails.
  static void removeAbandoned(const FileDescriptor& directory, const std::string& name);

 private:
  FileReplacement(FileDescriptor directory, std::string name, std::filesystem::path destination);

  void create();
  void close();
  void syncDirectory() const;
  void unlink() noexcept;

  FileDescriptor directory_;
  std::string name_;
  std::filesystem::path destination_;
  /// Empty once there is no such file any more.
  std::string temporary_;
  FileDescriptor file_;
  /// Keeps the file's lock when the file itself is closed.
  FileDescriptor lock_;
  std::uint64_t unsynced_ = 0;
};

}  // namespace ZAK
