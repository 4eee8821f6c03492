#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <string_view>

namespace ZAK::detail {

/// A text in the making that is written to directly: a `std::string` would look at its capacity for each of the many
/// small pieces, and fill whatever it grows by.
class TextBuffer {
 public:
  /// Room for `count` more characters. What was written there joins the text by `advance`.
  char* room(std::size_t count) {
    if (capacity_ - size_ < count) grow(count);
    return data_.get() + size_;
  }
  /// `end` is behind the last character written into the room.
  void advance(const char* end) noexcept { size_ = static_cast<std::size_t>(end - data_.get()); }

  void append(char c) {
    *room(1) = c;
    ++size_;
  }
  void append(std::string_view text) {
    std::memcpy(room(text.size()), text.data(), text.size());
    size_ += text.size();
  }

  [[nodiscard]] char last() const noexcept { return data_[size_ - 1]; }
  [[nodiscard]] std::string string() const { return std::string(data_.get(), size_); }

 private:
  struct Free {
    void operator()(char* data) const noexcept { std::free(data); }
  };

  void grow(std::size_t count) {
    constexpr std::size_t least = 4096;
    const std::size_t capacity = std::max({2 * capacity_, size_ + count, least});
    char* const data = static_cast<char*>(std::realloc(data_.get(), capacity));
    if (data == nullptr) throw std::bad_alloc();
    static_cast<void>(data_.release());
    data_.reset(data);
    capacity_ = capacity;
  }

  std::unique_ptr<char[], Free> data_;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
};

}  // namespace ZAK::detail
