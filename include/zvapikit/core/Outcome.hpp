#pragma once

#include <boost/system/result.hpp>

#include <exception>

namespace ZAK {

/// How an operation ended, as a callback is told: `has_value()`; `value()`, which throws what the operation threw;
/// `error()`, that exception, null when there is a value. An `Outcome<void>` has no value but `has_value()`.
///
/// Thread safety: as a standard container.
template <class T>
using Outcome = boost::system::result<T, std::exception_ptr>;

}  // namespace ZAK
