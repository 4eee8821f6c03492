#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/http/MIMEType.hpp>
#include <zvapikit/json/JSONEncoder.hpp>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ZAK {

class HTTPBodyPart;

/// The body of a request with its media type. Copies share the bytes, and files are read while they are sent, so that
/// a file must not change meanwhile.
///
/// Thread safety: as a standard container.
class ZVAPIKIT_API HTTPBody {
 public:
  /// A stretch of a body: bytes in memory, or the whole of a file.
  struct Piece {
    /// Null for a file.
    std::shared_ptr<const std::string> bytes;
    /// Empty for bytes in memory.
    std::filesystem::path file;
  };

  /// No body.
  HTTPBody() = default;

  /// `value` as JSON, with the type `application/json`.
  /// \throws EncodingError when the value has no JSON form (text that is not UTF-8, a number that is not finite).
  template <class T>
  static HTTPBody json(const T& value, const JSONEncoder& encoder = JSONEncoder()) {
    return data(encoder.encode(value), MIMEType::json);
  }

  /// Bytes as they are. An empty `type` sends no Content-Type.
  static HTTPBody data(std::string bytes, std::string_view type = MIMEType::octetStream);

  /// The content of a regular file, links followed. It is opened and its size taken whenever the body is about to be
  /// sent, and is read in small pieces, on the transport's executor.
  ///
  /// Errors: nothing is sent when the file cannot be opened, and the sending breaks off when it cannot be read to its
  /// end or was changed meanwhile; the server then sees a request that is cut short. Either way the call ends with an
  /// `HTTPError` of kind `fileSystem`.
  static HTTPBody file(std::filesystem::path path, std::string_view type = MIMEType::octetStream);

  /// A form of parts in their order (RFC 7578, `multipart/form-data`). An empty `boundary` stands for a random one; a
  /// given one is 1 to 70 of the characters `A-Za-z0-9'+_.-` and must not occur in the parts.
  /// \throws std::invalid_argument when the boundary is none, or a part's type holds a line break.
  static HTTPBody multipart(std::vector<HTTPBodyPart> parts, std::string boundary = {});

  /// False for a request without a body, true also for a body of no bytes.
  [[nodiscard]] bool isPresent() const noexcept { return pieces_ != nullptr; }
  /// The media type; empty when no Content-Type is to be sent.
  [[nodiscard]] const std::string& contentType() const noexcept { return contentType_; }

  /// The whole body in one string, its files read into it: for tests and monitors.
  /// \throws std::filesystem::filesystem_error when a file cannot be read.
  [[nodiscard]] std::string bytes() const;

  /// What a transport sends, one after another; empty when there is no body. Lives as long as the body.
  [[nodiscard]] const std::vector<Piece>& pieces() const noexcept;

 private:
  HTTPBody(std::vector<Piece> pieces, std::string type)
      : pieces_(std::make_shared<const std::vector<Piece>>(std::move(pieces))), contentType_(std::move(type)) {}

  std::shared_ptr<const std::vector<Piece>> pieces_;
  std::string contentType_;
};

/// One part of a `multipart/form-data` body.
///
/// Thread safety: as a standard container.
class HTTPBodyPart {
 public:
  /// The part's content and type are the body's. `name` and `fileName` are UTF-8; quotes and line breaks in them are
  /// percent-encoded, as browsers do.
  HTTPBodyPart(std::string name, HTTPBody body, std::optional<std::string> fileName = std::nullopt)
      : name_(std::move(name)), body_(std::move(body)), fileName_(std::move(fileName)) {}

  /// The name of the form's field.
  [[nodiscard]] const std::string& name() const noexcept { return name_; }
  /// The field's content with its media type.
  [[nodiscard]] const HTTPBody& body() const noexcept { return body_; }
  /// The name of the file that the content is; absent for a plain field.
  [[nodiscard]] const std::optional<std::string>& fileName() const noexcept { return fileName_; }

 private:
  std::string name_;
  HTTPBody body_;
  std::optional<std::string> fileName_;
};

}  // namespace ZAK
