#pragma once

#include <zvapikit/Export.hpp>

namespace ZAK {

/// Carried by the `Context` for the host's own use. The kit calls nothing on it.
///
/// Thread safety: the host's own business.
class ZVAPIKIT_API InterceptorDelegate {
 public:
  virtual ~InterceptorDelegate() = default;
};

}  // namespace ZAK
