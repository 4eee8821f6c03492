#pragma once

namespace ZAK {

/// Carried by the `Context` for the host's own use. The kit calls nothing on it.
class InterceptorDelegate {
 public:
  virtual ~InterceptorDelegate() = default;
};

}  // namespace ZAK
