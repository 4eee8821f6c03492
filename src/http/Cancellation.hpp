#pragma once

#include <boost/asio/awaitable.hpp>

namespace ZAK {

/// Makes the calling coroutine react to cancellation of every type; by default `total` and `partial` pass it by.
/// \throws boost::system::system_error `operation_aborted` when it was cancelled before, which setting the reaction
/// alone would forget.
boost::asio::awaitable<void> acceptAllCancellation();

/// \throws boost::system::system_error `operation_aborted`, as a cancelled operation ends.
[[noreturn]] void throwCancelled();

/// True for the error that a cancelled operation ends with.
[[nodiscard]] bool isCancellation(const std::exception_ptr& error) noexcept;

}  // namespace ZAK
