#include "core/Log.hpp"

#include <cstdio>

namespace ZAK::Log {
namespace {

template <class Call>
void withLogger(const DelegateReference<LoggerDelegate>& reference, Call call) noexcept {
  try {
    if (const auto logger = reference.lock()) call(*logger);
  } catch (...) {  // a logger that fails must not fail the call it was told of
  }
}

}  // namespace

void message(const DelegateReference<LoggerDelegate>& logger, std::string_view text) noexcept {
  withLogger(logger, [text](LoggerDelegate& target) { target.message(text, std::nullopt); });
}

void warning(const DelegateReference<LoggerDelegate>& logger, std::string_view text) noexcept {
  withLogger(logger, [text](LoggerDelegate& target) { target.warning(text); });
}

void error(const DelegateReference<LoggerDelegate>& logger, std::string_view text,
           const std::exception* error) noexcept {
  withLogger(logger, [text, error](LoggerDelegate& target) { target.error(text, error); });
}

void error(const DelegateReference<LoggerDelegate>& logger, std::string_view text,
           const std::exception_ptr& error) noexcept {
  try {
    std::rethrow_exception(error);
  } catch (const std::exception& exception) {
    Log::error(logger, text, &exception);
  } catch (...) {
    Log::error(logger, text, static_cast<const std::exception*>(nullptr));
  }
}

std::string text(Date date) {
  const auto seconds = std::chrono::floor<std::chrono::seconds>(date);
  const auto day = std::chrono::floor<std::chrono::days>(seconds);
  const std::chrono::year_month_day ymd(day);
  const std::chrono::hh_mm_ss time(seconds - day);
  char buffer[64];
  const int length = std::snprintf(buffer, sizeof buffer, "%04d-%02u-%02u %02d:%02d:%02d +0000", int(ymd.year()),
                                   unsigned(ymd.month()), unsigned(ymd.day()), int(time.hours().count()),
                                   int(time.minutes().count()), int(time.seconds().count()));
  return std::string(buffer, static_cast<std::size_t>(length));
}

}  // namespace ZAK::Log
