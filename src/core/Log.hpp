#pragma once

#include <zvapikit/core/DelegateReference.hpp>
#include <zvapikit/core/LoggerDelegate.hpp>
#include <zvapikit/json/Date.hpp>

#include <exception>
#include <string>
#include <string_view>

namespace ZAK::Log {

/// Each loads the logger afresh, skips the call when it is gone, and swallows what it throws.
void message(const DelegateReference<LoggerDelegate>& logger, std::string_view text) noexcept;
void warning(const DelegateReference<LoggerDelegate>& logger, std::string_view text) noexcept;
void error(const DelegateReference<LoggerDelegate>& logger, std::string_view text,
           const std::exception* error) noexcept;
/// The same with the exception behind `error`; null is passed on when it is no `std::exception`.
void error(const DelegateReference<LoggerDelegate>& logger, std::string_view text,
           const std::exception_ptr& error) noexcept;

/// `2023-04-05 17:09:12 +0000`: the form of dates in log lines. Fractions of a second are dropped.
[[nodiscard]] std::string text(Date date);

}  // namespace ZAK::Log
