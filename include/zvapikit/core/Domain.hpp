#pragma once

namespace ZAK {

/// Marks endpoint groups.
class Domain {
 public:
  virtual ~Domain() = default;
};

}  // namespace ZAK
