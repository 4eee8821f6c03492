#pragma once

#include <zvapikit/Export.hpp>

namespace ZAK {

/// Marks endpoint groups.
class ZVAPIKIT_API Domain {
 public:
  virtual ~Domain() = default;
};

}  // namespace ZAK
