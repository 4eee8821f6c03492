#pragma once

#include "http/ContextBound.hpp"

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/strand.hpp>

#include <memory>
#include <mutex>
#include <optional>
#include <utility>

namespace ZAK {

/// A strand for an object that may outlive the execution context: a strand itself must not.
///
/// Thread safety: callable from any thread. Copies of the strand must not be kept anywhere that the context's end does
/// not reach, such as the handler of a cancellation slot.
class ContextStrand final : public ContextBound {
  struct Private {
    explicit Private() = default;
  };

 public:
  using Executor = boost::asio::strand<boost::asio::any_io_executor>;

  /// \throws std::invalid_argument when the executor is empty.
  static std::shared_ptr<ContextStrand> create(const boost::asio::any_io_executor& executor);
  ContextStrand(Private, const boost::asio::any_io_executor& executor);

  /// \throws boost::system::system_error of `operation_aborted` once the context has ended.
  [[nodiscard]] Executor executor() const;

  /// Runs the function on the strand, or not at all once the context has ended. Unlike a copy of the strand this may be
  /// used while another thread destroys the context.
  template <class Function>
  void post(Function function) const {
    const std::lock_guard lock(mutex_);
    if (strand_) boost::asio::post(*strand_, std::move(function));
  }

  void contextShutdown() noexcept override;

 private:
  mutable std::mutex mutex_;
  std::optional<Executor> strand_;
};

}  // namespace ZAK
