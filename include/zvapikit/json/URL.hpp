#pragma once

#include <zvapikit/Export.hpp>

#include <optional>
#include <string>
#include <string_view>

namespace ZAK {

/// An absolute or relative URL reference (RFC 3986), checked once and kept as text.
///
/// A text that is already valid is kept byte for byte, since a signature may cover it; characters that are not legal in
/// a path, query or fragment are percent-encoded.
///
/// Thread safety: as a standard container.
class ZVAPIKIT_API URL {
 public:
  /// An empty URL, which no `parse` yields.
  URL() = default;

  /// Checks a text. Absent when it is empty or its scheme, host or port is not valid.
  [[nodiscard]] static std::optional<URL> parse(std::string_view text);

  /// The whole URL. That of a signed URL is a secret: keep it out of logs.
  [[nodiscard]] const std::string& string() const noexcept { return text_; }
  /// True for the empty URL alone.
  [[nodiscard]] bool empty() const noexcept { return text_.empty(); }
  /// The scheme in lower case; empty for a relative reference.
  [[nodiscard]] std::string scheme() const;
  /// The host in lower case, without brackets and port; empty when there is none.
  [[nodiscard]] std::string host() const;
  /// The port, or the default of http or https when none is given; absent for anything else.
  [[nodiscard]] std::optional<int> port() const;
  /// The path as it stands, still percent-encoded.
  [[nodiscard]] std::string path() const;
  /// What follows the last dot of the path's last component, percent-decoded: `mp4` of `/v.mp4?x=1.z`. Empty for
  /// `.mp4`, `v.` and `a.b/c`.
  [[nodiscard]] std::string pathExtension() const;
  /// Everything before the query, or before the fragment when there is no query.
  [[nodiscard]] std::string_view withoutQuery() const noexcept;

  /// True when scheme, host and port are the same (RFC 6454).
  [[nodiscard]] bool hasSameOrigin(const URL& other) const;

  bool operator==(const URL&) const = default;

 private:
  explicit URL(std::string text) : text_(std::move(text)) {}

  std::string text_;
};

}  // namespace ZAK
