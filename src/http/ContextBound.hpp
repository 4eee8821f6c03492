#pragma once

#include <boost/asio/any_io_executor.hpp>

#include <memory>

namespace ZAK {

/// Something that holds strands, timers or descriptors of an execution context and has to let go of them before the
/// context ends, however long it lives itself.
class ContextBound {
 public:
  virtual ~ContextBound() = default;

  /// Called by the thread that destroys the context, when no handler of it runs any more but its timers, descriptors
  /// and strands can still be destroyed. Must release all of them and post nothing.
  virtual void contextShutdown() noexcept = 0;
};

/// Has `bound` told of the end of the executor's context, unless it is gone by then. Callable from any thread.
void bindToContext(const boost::asio::any_io_executor& executor, std::weak_ptr<ContextBound> bound);

}  // namespace ZAK
