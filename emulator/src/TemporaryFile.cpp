#include "TemporaryFile.hpp"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <system_error>
#include <unistd.h>

namespace ZAK {

namespace {

bool write(int file, std::string_view content) {
  while (!content.empty()) {
    const ssize_t count = ::write(file, content.data(), content.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    content.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

}  // namespace

TemporaryFile::TemporaryFile(std::string_view name, std::string_view content) {
  std::string directory = std::filesystem::temp_directory_path() / "zvapikit-emulator-XXXXXX";
  if (!::mkdtemp(directory.data())) throw std::system_error(errno, std::generic_category(), "temporary directory");
  path_ = std::filesystem::path(directory) / name;
  const int file = ::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
  const bool written = file >= 0 && write(file, content);
  const int error = errno;
  if (file >= 0) ::close(file);
  if (written) return;
  std::error_code ignored;
  std::filesystem::remove_all(directory, ignored);
  throw std::system_error(error, std::generic_category(), "temporary file");
}

TemporaryFile::~TemporaryFile() {
  std::error_code ignored;
  std::filesystem::remove_all(path_.parent_path(), ignored);
}

}  // namespace ZAK
