#pragma once

#include <concepts>
#include <memory>

namespace ZAK {

/// A weak reference to an object of the host's. The kit never keeps a delegate alive: it loads the reference afresh at
/// each use and skips the call when the object is gone.
///
/// A temporary `shared_ptr` is refused at compile time, since its object would be gone at once.
///
/// Thread safety: as a standard container; the delegate itself may go at any time, on any thread.
template <class Delegate>
class DelegateReference {
 public:
  DelegateReference() = default;
  /// No delegate.
  DelegateReference(std::nullptr_t) {}
  /// A delegate that the host keeps.
  template <class T>
  requires std::convertible_to<T*, Delegate*> DelegateReference(const std::shared_ptr<T>& delegate)
      : delegate_(delegate) {}
  /// A delegate that nobody else keeps would be gone at once: name it first.
  template <class T>
  requires std::convertible_to<T*, Delegate*> DelegateReference(const std::shared_ptr<T>&& delegate)
  = delete;
  /// A delegate that the host keeps, held weakly already.
  template <class T>
  requires std::convertible_to<T*, Delegate*> DelegateReference(const std::weak_ptr<T>& delegate)
      : delegate_(delegate) {}

  /// The delegate, or null when there is none or it is gone.
  [[nodiscard]] std::shared_ptr<Delegate> lock() const noexcept { return delegate_.lock(); }

 private:
  std::weak_ptr<Delegate> delegate_;
};

}  // namespace ZAK
