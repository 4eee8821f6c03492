#pragma once

#include <zvapikit/json/JSONErrors.hpp>

#include <algorithm>
#include <string_view>
#include <vector>

namespace ZAK::detail {

/// Where coding stands: one frame a container, on the stack of the walk. An array has an empty key's place taken by
/// the index.
struct CodingFrame {
  const CodingFrame* parent = nullptr;
  bool isArray = false;
  std::string_view key = {};
  std::size_t index = 0;
};

/// Makes a frame current for the life of a scope.
class CodingFrameScope {
 public:
  CodingFrameScope(const CodingFrame*& current, bool isArray) noexcept
      : current_(current), frame_{.parent = current, .isArray = isArray} {
    current = &frame_;
  }
  ~CodingFrameScope() { current_ = frame_.parent; }
  CodingFrameScope(const CodingFrameScope&) = delete;
  CodingFrameScope& operator=(const CodingFrameScope&) = delete;

  void enter(std::string_view key) noexcept { frame_.key = key; }
  void enter(std::size_t index) noexcept { frame_.index = index; }

 private:
  const CodingFrame*& current_;
  CodingFrame frame_;
};

inline std::vector<CodingKey> codingPath(const CodingFrame* frame) {
  std::vector<CodingKey> path;
  for (; frame; frame = frame->parent) {
    path.push_back(frame->isArray ? CodingKey(frame->index) : CodingKey(std::string(frame->key)));
  }
  std::reverse(path.begin(), path.end());
  return path;
}

}  // namespace ZAK::detail
