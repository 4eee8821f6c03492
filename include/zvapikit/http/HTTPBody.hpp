#pragma once

#include <zvapikit/http/MIMEType.hpp>
#include <zvapikit/json/JSONEncoder.hpp>

#include <memory>
#include <string>
#include <string_view>

namespace ZAK {

/// The body of a request with its media type. Copies share the bytes.
class HTTPBody {
 public:
  /// No body.
  HTTPBody() = default;

  /// `value` as JSON, with the type `application/json`.
  /// \throws EncodingError when the value has no JSON form (text that is not UTF-8, a number that is not finite).
  template <class T>
  static HTTPBody json(const T& value, const JSONEncoder& encoder = JSONEncoder()) {
    return HTTPBody(encoder.encode(value), MIMEType::json);
  }

  /// Bytes as they are. An empty `type` sends no Content-Type.
  static HTTPBody data(std::string bytes, std::string_view type = MIMEType::octetStream) {
    return HTTPBody(std::move(bytes), type);
  }

  /// False for a request without a body, true also for a body of no bytes.
  [[nodiscard]] bool isPresent() const noexcept { return bytes_ != nullptr; }
  /// The bytes; empty when there is no body.
  [[nodiscard]] std::string_view bytes() const noexcept {
    return bytes_ ? std::string_view(*bytes_) : std::string_view();
  }
  [[nodiscard]] const std::string& contentType() const noexcept { return contentType_; }

 private:
  HTTPBody(std::string bytes, std::string_view type)
      : bytes_(std::make_shared<const std::string>(std::move(bytes))), contentType_(type) {}

  std::shared_ptr<const std::string> bytes_;
  std::string contentType_;
};

}  // namespace ZAK
