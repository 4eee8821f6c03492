#include "http/ContextBound.hpp"

#include <boost/asio/execution/context.hpp>
#include <boost/asio/execution_context.hpp>
#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/strand.hpp>

#include <algorithm>
#include <mutex>
#include <vector>

namespace ZAK {
namespace {

class Registry final : public boost::asio::execution_context::service {
 public:
  using key_type = Registry;
  static inline boost::asio::execution_context::id id;

  explicit Registry(boost::asio::execution_context& context) : service(context) {}

  void add(std::weak_ptr<ContextBound> bound) {
    const std::lock_guard lock(mutex_);
    if (bound_.size() >= pruneAt_) {
      std::erase_if(bound_, [](const auto& entry) { return entry.expired(); });
      pruneAt_ = std::max<std::size_t>(16, 2 * bound_.size());
    }
    bound_.push_back(std::move(bound));
  }

 private:
  void shutdown() noexcept override {
    std::vector<std::weak_ptr<ContextBound>> bound;
    {
      const std::lock_guard lock(mutex_);
      bound.swap(bound_);
    }
    for (const auto& entry : bound) {
      if (const auto object = entry.lock()) object->contextShutdown();
    }
  }

  std::mutex mutex_;
  std::vector<std::weak_ptr<ContextBound>> bound_;
  std::size_t pruneAt_ = 16;
};

}  // namespace

void bindToContext(const boost::asio::any_io_executor& executor, std::weak_ptr<ContextBound> bound) {
  // A context shuts its services down in the reverse order of their making. The services that bound objects use are
  // made here first, so that they still work when the registry's turn comes.
  const boost::asio::steady_timer timer(executor);
  const boost::asio::posix::stream_descriptor descriptor(executor);
  const auto strand = boost::asio::make_strand(executor);
  auto& context = boost::asio::query(executor, boost::asio::execution::context);
  boost::asio::use_service<Registry>(context).add(std::move(bound));
}

}  // namespace ZAK
