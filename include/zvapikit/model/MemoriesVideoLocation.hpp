#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/json/JSONValue.hpp>
#include <zvapikit/json/JSONWriter.hpp>
#include <zvapikit/json/URL.hpp>

#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace ZAK {

/// Where a recap video lies on the device: below the documents directory, or anywhere. The first kind outlives a move
/// of that directory.
///
/// In JSON it is `{"documents": {"path": "..."}}` or `{"absolute": {"url": "..."}}`.
///
/// Thread safety: as a standard container.
class ZVAPIKIT_API MemoriesVideoLocation {
 public:
  /// The documents directory itself.
  MemoriesVideoLocation() = default;

  /// `path` is relative to the documents directory.
  static MemoriesVideoLocation documents(std::string path) { return MemoriesVideoLocation(std::move(path)); }
  /// `url` is that of a file.
  static MemoriesVideoLocation absolute(URL url) { return MemoriesVideoLocation(std::move(url)); }

  /// Where a video that the device made is kept. Makes the directory for it, 0700, below `documentsDirectory`.
  /// \throws ZAKError `urlNotValid`, before that, when the name holds `/`, `..` or NUL;
  ///   std::filesystem::filesystem_error when the directory cannot be made.
  static MemoriesVideoLocation clientGenerated(std::string_view recapName,
                                               const std::filesystem::path& documentsDirectory);
  /// Where a video downloaded from `remoteUrl` is kept, with the extension of that URL. Otherwise as
  /// `clientGenerated`. Recaps of one name and extension share their file.
  static MemoriesVideoLocation serverGenerated(const URL& remoteUrl, std::string_view recapName,
                                               const std::filesystem::path& documentsDirectory);

  /// The path below the documents directory; null for an absolute location.
  [[nodiscard]] const std::string* documentsPath() const noexcept { return std::get_if<std::string>(&place_); }
  /// The URL as it was given; null for a location below the documents directory.
  [[nodiscard]] const URL* absoluteUrl() const noexcept { return std::get_if<URL>(&place_); }

  /// The path of the file, for opening it. `documentsDirectory` is `MobileApiDomain::directories().documents`.
  /// \throws ZAKError `urlNotValid` when an absolute location is not on the device (its URL is no `file:` URL).
  [[nodiscard]] std::filesystem::path path(const std::filesystem::path& documentsDirectory) const;
  /// The URL of the file, `file:///...` for a location below the documents directory.
  [[nodiscard]] URL url(const std::filesystem::path& documentsDirectory) const;

  bool operator==(const MemoriesVideoLocation&) const = default;
  static MemoriesVideoLocation decodeJSON(const JSONValue& json);
  void encodeJSON(JSONWriter& writer) const;

 private:
  explicit MemoriesVideoLocation(std::variant<std::string, URL> place) : place_(std::move(place)) {}

  std::variant<std::string, URL> place_;
};

}  // namespace ZAK
