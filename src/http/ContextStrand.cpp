#include "http/ContextStrand.hpp"

#include <boost/asio/error.hpp>
#include <boost/system/system_error.hpp>

#include <stdexcept>
#include <utility>

namespace ZAK {

std::shared_ptr<ContextStrand> ContextStrand::create(const boost::asio::any_io_executor& executor) {
  if (!executor) throw std::invalid_argument("the executor is empty");
  auto strand = std::make_shared<ContextStrand>(Private(), executor);
  bindToContext(executor, strand);
  return strand;
}

ContextStrand::ContextStrand(Private, const boost::asio::any_io_executor& executor)
    : strand_(boost::asio::make_strand(executor)) {}

ContextStrand::Executor ContextStrand::executor() const {
  const std::lock_guard lock(mutex_);
  if (!strand_) throw boost::system::system_error(boost::asio::error::operation_aborted);
  return *strand_;
}

void ContextStrand::contextShutdown() noexcept {
  // Destroyed outside the lock: with the strand go the handlers queued on it, and they may ask for the executor.
  std::optional<Executor> strand;
  const std::lock_guard lock(mutex_);
  strand.swap(strand_);
}

}  // namespace ZAK
