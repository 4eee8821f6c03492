#pragma once

#include <zvapikit/Export.hpp>

namespace ZAK {

/// Marks endpoint groups. Thread safety: it has no state.
class ZVAPIKIT_API Domain {
 public:
  virtual ~Domain() = default;
};

}  // namespace ZAK
