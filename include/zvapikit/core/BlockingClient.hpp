#pragma once

#include <zvapikit/Export.hpp>

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/awaitable.hpp>

#include <memory>
#include <optional>
#include <stop_token>
#include <type_traits>
#include <utility>

namespace ZAK {

struct Context;
class MobileApiClient;

/// A client for hosts without an executor, such as command-line tools: each call waits for its operation to end.
///
///     ZAK::BlockingClient tool(std::move(context));  // a Context without an executor
///     ZAK::FeedsDomain feeds{tool.client()};
///     std::vector<ZAK::LegacyPostDto> posts = tool.run(feeds.fetchFriends());
///
/// It has no thread of its own: everything happens inside `run`, in the thread that calls it, the host's delegates and
/// the callbacks of `client()->spawn` included. Work that an operation leaves behind, or that was spawned beside it,
/// stands still between runs and goes on in the next one. Destruction ends whatever is left without resuming it.
///
/// Thread safety: one thread at a time, and no other than through `stop` while `run` runs.
class ZVAPIKIT_API BlockingClient {
 public:
  /// Builds the client, with an executor of its own. Nothing is sent.
  /// \throws std::invalid_argument when the context has an executor, and as `MobileApiClient::create`.
  explicit BlockingClient(Context context);
  ~BlockingClient();
  BlockingClient(const BlockingClient&) = delete;
  BlockingClient& operator=(const BlockingClient&) = delete;

  /// What to make endpoint groups from.
  [[nodiscard]] const std::shared_ptr<MobileApiClient>& client() const noexcept;
  /// Where the work runs, for what a host adds to it: a timer, a signal handler. Not to be used once this object is
  /// gone.
  [[nodiscard]] boost::asio::any_io_executor executor() const noexcept;

  /// Runs the operation to its end: one of an endpoint group, or any coroutine of the host's own.
  ///
  /// A stop request, from any thread or from what runs meanwhile, cancels the operation, which then ends as a cancelled
  /// one does; one that was made before keeps it from sending anything. What a callback throws leaves `run` too, and
  /// cancels the operation, whose end then is nobody's.
  /// \throws std::logic_error when called while it runs; boost::system::system_error of `operation_aborted` when the
  ///   host stops the context of `executor()`, or nothing is left that would resume the operation; otherwise what the
  ///   operation throws.
  template <class T>
  T run(boost::asio::awaitable<T> operation, std::stop_token stop = {}) {
    if constexpr (std::is_void_v<T>) {
      complete(std::move(operation), std::move(stop));
    } else {
      const auto result = std::make_shared<std::optional<T>>();
      complete(keepResult(std::move(operation), result), std::move(stop));
      return std::move(**result);
    }
  }

 private:
  struct Parts;

  void complete(boost::asio::awaitable<void> operation, std::stop_token stop);

  template <class T>
  static boost::asio::awaitable<void> keepResult(boost::asio::awaitable<T> operation,
                                                 std::shared_ptr<std::optional<T>> result) {
    T value = co_await std::move(operation);
    result->emplace(std::move(value));
  }

  std::unique_ptr<Parts> parts_;
};

}  // namespace ZAK
