#pragma once

#include <zvapikit/core/Outcome.hpp>

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/associated_executor.hpp>
#include <boost/asio/cancellation_signal.hpp>
#include <boost/asio/dispatch.hpp>
#include <boost/asio/executor_work_guard.hpp>

#include <concepts>
#include <exception>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>
#include <variant>

namespace ZAK::detail {

// The parts of `MobileApiClient::spawn`.

/// Some completion tokens can be called with anything, but yield another token.
template <class Token, class T>
concept OutcomeCallback = requires(std::decay_t<Token> callback, Outcome<T> outcome) {
  { std::move(callback)(std::move(outcome)) } -> std::same_as<void>;
};

template <class T, bool isCallback>
struct SpawnSignature {
  using type = void(Outcome<T>);
};
template <class T>
struct SpawnSignature<T, false> {
  using type = void(std::exception_ptr, T);
};
template <>
struct SpawnSignature<void, false> {
  using type = void(std::exception_ptr);
};

/// What a spawned operation yields on its way to the handler: unlike `T`, default constructible.
template <class T>
using Spawned = std::optional<std::conditional_t<std::is_void_v<T>, std::monostate, T>>;

/// Hands what `co_spawn` brings on to the token's handler, on the executor of that.
///
/// It hides that executor from `co_spawn`, which would keep a copy of the operation's in the cancellation signal.
template <class T, bool isCallback, class Handler>
class SpawnHandler {
 public:
  using cancellation_slot_type = boost::asio::cancellation_slot;

  SpawnHandler(Handler handler, const boost::asio::any_io_executor& executor,
               std::shared_ptr<boost::asio::cancellation_signal> cancellation)
      : handler_(std::move(handler)),
        work_(boost::asio::get_associated_executor(handler_, executor)),
        cancellation_(std::move(cancellation)) {}

  [[nodiscard]] cancellation_slot_type get_cancellation_slot() const noexcept { return cancellation_->slot(); }

  void operator()(std::exception_ptr failure, Spawned<T> value) {
    cancellation_.reset();
    boost::asio::dispatch(work_.get_executor(), [handler = std::move(handler_), failure = std::move(failure),
                                                 value = std::move(value)]() mutable {
      if constexpr (isCallback) {
        std::move(handler)(failure ? Outcome<T>(boost::system::in_place_error, std::move(failure)) : success(value));
      } else if constexpr (std::is_void_v<T>) {
        std::move(handler)(std::move(failure));
      } else {
        std::move(handler)(std::move(failure), value ? std::move(*value) : T());
      }
    });
  }

 private:
  static Outcome<T> success(Spawned<T>& value) {
    if constexpr (std::is_void_v<T>) {
      return Outcome<T>(boost::system::in_place_value);
    } else {
      return Outcome<T>(boost::system::in_place_value, std::move(*value));
    }
  }

  Handler handler_;
  boost::asio::executor_work_guard<boost::asio::associated_executor_t<Handler, boost::asio::any_io_executor>> work_;
  std::shared_ptr<boost::asio::cancellation_signal> cancellation_;
};

}  // namespace ZAK::detail
