#include "http/URIText.hpp"

#include <zvapikit/core/EmptyDto.hpp>
#include <zvapikit/core/ZAKError.hpp>
#include <zvapikit/json/JSONErrors.hpp>
#include <zvapikit/model/MemoriesVideoLocation.hpp>
#include <zvapikit/platform/Directories.hpp>

#include <boost/url/url_view.hpp>

#include <array>
#include <map>

namespace ZAK {
namespace {

namespace fs = std::filesystem;

struct DocumentsCase {
  std::string path;
  static constexpr auto jsonFields() { return std::array{JSONField::of<&DocumentsCase::path>("path")}; }
};

struct AbsoluteCase {
  URL url;
  static constexpr auto jsonFields() { return std::array{JSONField::of<&AbsoluteCase::url>("url")}; }
};

/// True for text that stays in the directory when it is made part of a file's name.
bool isPartOfName(std::string_view text) {
  constexpr std::string_view separators("/\0", 2);
  return text.find_first_of(separators) == std::string_view::npos && text.find("..") == std::string_view::npos;
}

MemoriesVideoLocation generated(std::string_view kind, std::string_view recapName, const std::string& extension,
                                const fs::path& documents) {
  if (!isPartOfName(recapName) || !isPartOfName(extension)) throw ZAKError(ZAKError::urlNotValid);
  if (documents.empty()) {
    throw fs::filesystem_error("no home for the documents", std::make_error_code(std::errc::no_such_file_or_directory));
  }
  const std::string directory = "memories/" + std::string(kind) + '/';
  Directories::createPrivate(documents / directory);
  return MemoriesVideoLocation::documents(directory + "Zolvi " + std::string(recapName) + " Video Recap." + extension);
}

}  // namespace

MemoriesVideoLocation MemoriesVideoLocation::clientGenerated(std::string_view recapName,
                                                             const fs::path& documentsDirectory) {
  // With a dot of its own: such files end in two, and hosts have them.
  return generated("client", recapName, ".mp4", documentsDirectory);
}

MemoriesVideoLocation MemoriesVideoLocation::serverGenerated(const URL& remoteUrl, std::string_view recapName,
                                                             const fs::path& documentsDirectory) {
  return generated("server", recapName, remoteUrl.pathExtension(), documentsDirectory);
}

fs::path MemoriesVideoLocation::path(const fs::path& documentsDirectory) const {
  if (const std::string* below = documentsPath()) {
    return fs::absolute(documentsDirectory / fs::path(*below).relative_path());
  }
  const URL& url = *absoluteUrl();
  if (url.scheme() != "file" || !url.host().empty()) throw ZAKError(ZAKError::urlNotValid);
  return boost::urls::url_view(url.string()).path();
}

URL MemoriesVideoLocation::url(const fs::path& documentsDirectory) const {
  if (const URL* absolute = absoluteUrl()) return *absolute;
  std::string text = "file://";
  for (const fs::path& component : path(documentsDirectory).relative_path()) {
    text += '/' + percentEncoded(component.native());
  }
  return URL::parse(text).value();
}

MemoriesVideoLocation MemoriesVideoLocation::decodeJSON(const JSONValue& json) {
  const auto keys = json.as<std::map<std::string, EmptyDto>>();
  const bool isDocuments = keys.contains("documents");
  if (isDocuments == keys.contains("absolute")) {
    json.fail("Invalid number of keys found, expected one.", DecodingError::Kind::typeMismatch);
  }
  if (isDocuments) return documents(json.get<DocumentsCase>("documents").path);
  return absolute(json.get<AbsoluteCase>("absolute").url);
}

void MemoriesVideoLocation::encodeJSON(JSONWriter& writer) const {
  writer.beginObject();
  if (const std::string* path = documentsPath()) {
    writer.field("documents", DocumentsCase{*path});
  } else {
    writer.field("absolute", AbsoluteCase{*absoluteUrl()});
  }
  writer.endObject();
}

}  // namespace ZAK
