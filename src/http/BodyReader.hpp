#pragma once

#include "platform/FileDescriptor.hpp"

#include <zvapikit/http/HTTPBody.hpp>

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

namespace ZAK {

/// The bytes of a body that is one piece of memory; null when it is not, and has to be read.
[[nodiscard]] const std::string* bytesInMemory(const HTTPBody& body) noexcept;

/// Reads a body from its start to its end, its files piece by piece.
///
/// Errors: `std::filesystem::filesystem_error` that names the file. Used by one thread at a time.
class BodyReader {
 public:
  /// Opens the body's files and takes their sizes.
  explicit BodyReader(const HTTPBody& body);

  /// Of the whole body, as it was when the files were opened.
  [[nodiscard]] std::uint64_t size() const noexcept { return size_; }
  /// Fills as much of `room` as it can; 0 means that the body is over. A file that is no longer what it was fails, at
  /// the latest before the last of its bytes is given out.
  std::size_t read(std::span<char> room);
  /// Goes back to the first byte.
  void rewind() noexcept;

 private:
  struct Source {
    HTTPBody::Piece piece;
    std::uint64_t size = 0;
    FileDescriptor file{};
    timespec modified{};

    std::size_t read(std::span<char> room, std::uint64_t offset) const;
    void checkUnchanged() const;
  };

  static Source open(const HTTPBody::Piece& piece);

  std::vector<Source> sources_;
  std::uint64_t size_ = 0;
  std::size_t current_ = 0;
  std::uint64_t offset_ = 0;
};

}  // namespace ZAK
