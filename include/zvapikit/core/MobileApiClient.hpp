#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/core/Client.hpp>
#include <zvapikit/core/SpawnHandler.hpp>
#include <zvapikit/http/HTTPResponse.hpp>
#include <zvapikit/platform/Directories.hpp>

#include <boost/asio/associated_cancellation_slot.hpp>
#include <boost/asio/async_result.hpp>
#include <boost/asio/cancellation_state.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/this_coro.hpp>

#include <memory>
#include <type_traits>
#include <utility>

namespace ZAK {

struct Context;
class HTTPClient;

/// The one object through which every call of the kit reaches the network. The host makes it from a `Context`, makes
/// endpoint groups from it, and keeps it as long as they are used. Dropping it is all the tear-down there is: calls in
/// flight finish.
///
/// Thread safety: all operations may be called from any thread, any number at once.
class ZVAPIKIT_API MobileApiClient final : public Client {
  struct Parts;

 public:
  /// Builds a client. Nothing is sent.
  /// \throws std::invalid_argument when the context's executor is empty, or a base URL of its environment is not an
  ///   absolute https URL without user and query.
  static std::shared_ptr<MobileApiClient> create(Context context);

  /// Not for hosts: use `create`.
  explicit MobileApiClient(std::unique_ptr<Parts> parts);
  ~MobileApiClient() override;

  [[nodiscard]] const Configuration& configuration() const noexcept override;
  [[nodiscard]] const DeviceInfo& deviceInfo() const noexcept override;
  [[nodiscard]] std::shared_ptr<LoggerDelegate> logger() const override;
  void setLogger(DelegateReference<LoggerDelegate> logger) override;

  /// Where the client's files are: the context's directories, each with its default where the context named none.
  [[nodiscard]] const Directories& directories() const noexcept;

  /// Starts an operation, of an endpoint group or any coroutine of the host's own, for hosts that do not `co_await`:
  ///
  ///     client->spawn(feeds.fetchFriends(), [](ZAK::Outcome<std::vector<ZAK::LegacyPostDto>> posts) { ... });
  ///     std::future<ZAK::DiscoveryDto> discovery = client->spawn(feeds.fetchDiscovery(), boost::asio::use_future);
  ///
  /// A callback takes one `Outcome` and returns nothing. Any other completion token (`use_future`, `detached`,
  /// `deferred`, ...) works as with `boost::asio::co_spawn`; the result must then be default constructible. The
  /// operation keeps the client until it has ended.
  ///
  /// Operations and callbacks run on the context's executor, those of one client one at a time, so a callback must not
  /// block; `bind_executor` takes it elsewhere. What it throws leaves the `run()` of the context that it runs on. When
  /// the client's context ends before the operation does, the callback is destroyed without being called.
  ///
  /// `bind_cancellation_slot(signal.slot(), callback)` lets `signal.emit(type)` cancel the operation, at any time and
  /// from any thread, with every cancellation type. The signal may outlive the client and the context.
  ///
  /// Callable from any thread, but not while another destroys the context.
  /// \throws boost::system::system_error of `operation_aborted` when the executor's context has ended.
  template <class T, class Token>
  auto spawn(boost::asio::awaitable<T> operation, Token&& token) {
    constexpr bool isCallback = detail::OutcomeCallback<Token, T>;
    return boost::asio::async_initiate<Token, typename detail::SpawnSignature<T, isCallback>::type>(
        [self = shared()](auto&& handler, boost::asio::awaitable<T> call) {
          using Handler = std::decay_t<decltype(handler)>;
          const auto cancellation = std::make_shared<boost::asio::cancellation_signal>();
          if (auto slot = boost::asio::get_associated_cancellation_slot(handler); slot.is_connected()) {
            slot.assign(SpawnCancellation{self, cancellation});
          }
          const auto executor = self->spawnExecutor();
          boost::asio::co_spawn(executor, keptAlive(self, std::move(call)),
                                detail::SpawnHandler<T, isCallback, Handler>(std::forward<decltype(handler)>(handler),
                                                                             executor, cancellation));
        },
        token, std::move(operation));
  }

  /// Forgets the token, in memory and in the keychain. A token exchange that is under way is not cancelled, but what
  /// it brings is dropped. Sends nothing; fails only by cancellation. Safe to repeat.
  boost::asio::awaitable<void> clear();

  /// Does what `clear()` does, then signs the user out of the host's Firebase authentifier, if that is still there.
  /// Cancelled meanwhile it may have done the first without the second. Safe to repeat.
  boost::asio::awaitable<void> logout();

  /// A bare HTTP client over this client's connections, for absolute URLs outside the kit's two servers: no base URL,
  /// none of the kit's headers, no token, no validators but the default one. It follows at most 5 redirects and reports
  /// to the client's monitor. Repeats are those that `HTTPClient::create` tells of, up to `HTTPRequest::maxRetries`.
  [[nodiscard]] std::shared_ptr<HTTPClient> buildRaw() const;

  /// Sends a request that has a destination through a client as `buildRaw` makes them. Calls for one URL (its query
  /// aside) and destination share a transfer: whoever comes later waits for it and is told of its progress.
  /// When the call that transfers is cancelled, one that waits takes over. Otherwise as `HTTPClient::fetch`.
  /// Safe to repeat.
  /// \throws std::invalid_argument when the request has no destination.
  boost::asio::awaitable<HTTPResponse> download(HTTPRequest request);

 private:
  /// Takes a cancellation to where its operation runs. Holds nothing that must not outlive the execution context.
  struct SpawnCancellation {
    std::weak_ptr<MobileApiClient> client;
    std::weak_ptr<boost::asio::cancellation_signal> operation;

    void operator()(boost::asio::cancellation_type type) const;
  };

  [[nodiscard]] std::shared_ptr<MobileApiClient> shared();
  /// A strand over the context's executor.
  [[nodiscard]] boost::asio::any_io_executor spawnExecutor() const;
  template <class T>
  static boost::asio::awaitable<detail::Spawned<T>> keptAlive([[maybe_unused]] std::shared_ptr<MobileApiClient> self,
                                                              boost::asio::awaitable<T> operation) {
    co_await boost::asio::this_coro::reset_cancellation_state(boost::asio::enable_total_cancellation());
    if constexpr (std::is_void_v<T>) {
      co_await std::move(operation);
      co_return std::monostate();
    } else {
      T value = co_await std::move(operation);
      co_return detail::Spawned<T>(std::move(value));
    }
  }

  boost::asio::awaitable<void> send(HTTPRequest request, Route route, DecodeTarget target) override;
  static boost::asio::awaitable<void> sendKeeping(std::shared_ptr<MobileApiClient> self, HTTPRequest request,
                                                  Route route, DecodeTarget target);
  static boost::asio::awaitable<void> clearKeeping(std::shared_ptr<MobileApiClient> self, bool signsOut);

  std::unique_ptr<Parts> parts_;
};

}  // namespace ZAK
