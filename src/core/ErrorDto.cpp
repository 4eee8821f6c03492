#include <zvapikit/core/ErrorDto.hpp>

#include <tuple>
#include <utility>

namespace ZAK {

ErrorDto::ErrorDto(std::string error_, std::int64_t statusCode_, std::optional<std::string> message_,
                   std::optional<std::string> errorKey_, std::optional<std::string> requestId_,
                   std::optional<std::string> timestamp_)
    : error(std::move(error_)),
      statusCode(statusCode_),
      message(std::move(message_)),
      errorKey(std::move(errorKey_)),
      requestId(std::move(requestId_)),
      timestamp(std::move(timestamp_)),
      description_("Error: " + error + " message : " + message.value_or("") + ", keys: " + errorKey.value_or("")) {}

std::optional<ErrorDto::Key> ErrorDto::key() const noexcept {
  return errorKey ? fromRawValue<Key>(*errorKey) : std::nullopt;
}

bool ErrorDto::operator==(const ErrorDto& other) const noexcept {
  const auto tie = [](const ErrorDto& e) {
    return std::tie(e.error, e.statusCode, e.message, e.errorKey, e.requestId, e.timestamp);
  };
  return tie(*this) == tie(other);
}

ErrorDto ErrorDto::decodeJSON(const JSONValue& json) {
  ErrorDto read = json.fields<ErrorDto>();
  return ErrorDto(std::move(read.error), read.statusCode, std::move(read.message), std::move(read.errorKey),
                  std::move(read.requestId), std::move(read.timestamp));
}

}  // namespace ZAK
