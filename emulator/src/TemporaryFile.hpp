#pragma once

#include <filesystem>
#include <string_view>

namespace ZAK {

/// A file that only this user can read, in a directory of its own; both are removed with the object.
class TemporaryFile {
 public:
  TemporaryFile(std::string_view name, std::string_view content);
  ~TemporaryFile();
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  [[nodiscard]] const std::filesystem::path& path() const noexcept { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace ZAK
