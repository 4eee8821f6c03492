#include "http/BodyReader.hpp"

#include <algorithm>
#include <fcntl.h>
#include <sys/stat.h>

namespace ZAK {

const std::string* bytesInMemory(const HTTPBody& body) noexcept {
  return body.pieces().size() == 1 ? body.pieces().front().bytes.get() : nullptr;
}

BodyReader::BodyReader(const HTTPBody& body) {
  sources_.reserve(body.pieces().size());
  for (const HTTPBody::Piece& piece : body.pieces()) size_ += sources_.emplace_back(open(piece)).size;
}

BodyReader::Source BodyReader::open(const HTTPBody::Piece& piece) {
  Source source{piece};
  if (piece.bytes) {
    source.size = piece.bytes->size();
    return source;
  }
  // Without O_NONBLOCK a pipe would hold up the opening.
  source.file = FileDescriptor(::open(piece.file.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  if (!source.file) failOnFile("opening a file to send", piece.file);
  struct stat status {};
  if (::fstat(source.file.get(), &status) != 0) failOnFile("looking at a file to send", piece.file);
  if (!S_ISREG(status.st_mode)) {
    failOnFile("opening a file to send that is no regular one", piece.file, S_ISDIR(status.st_mode) ? EISDIR : EINVAL);
  }
  source.size = static_cast<std::uint64_t>(status.st_size);
  source.modified = status.st_mtim;
  ::posix_fadvise(source.file.get(), 0, 0, POSIX_FADV_SEQUENTIAL);
  return source;
}

std::size_t BodyReader::read(std::span<char> room) {
  std::size_t filled = 0;
  while (filled < room.size() && current_ < sources_.size()) {
    const Source& source = sources_[current_];
    const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(room.size() - filled, source.size - offset_));
    const std::size_t done = source.read(room.subspan(filled, count), offset_);
    filled += done;
    offset_ += done;
    if (offset_ < source.size) continue;
    source.checkUnchanged();
    ++current_;
    offset_ = 0;
  }
  return filled;
}

void BodyReader::rewind() noexcept {
  current_ = 0;
  offset_ = 0;
}

std::size_t BodyReader::Source::read(std::span<char> room, std::uint64_t offset) const {
  if (room.empty()) return 0;
  if (piece.bytes) return piece.bytes->copy(room.data(), room.size(), offset);
  for (;;) {
    const ssize_t count = ::pread(file.get(), room.data(), room.size(), static_cast<off_t>(offset));
    if (count > 0) return static_cast<std::size_t>(count);
    if (count == 0) failOnFile("reading a file that became shorter meanwhile", piece.file, ESTALE);
    if (errno != EINTR) failOnFile("reading a file to send", piece.file);
  }
}

void BodyReader::Source::checkUnchanged() const {
  if (!file) return;
  struct stat status {};
  if (::fstat(file.get(), &status) != 0) failOnFile("looking at a file to send", piece.file);
  if (static_cast<std::uint64_t>(status.st_size) != size || status.st_mtim.tv_sec != modified.tv_sec ||
      status.st_mtim.tv_nsec != modified.tv_nsec) {
    failOnFile("reading a file that was changed meanwhile", piece.file, ESTALE);
  }
}

}  // namespace ZAK
