#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/core/MobileApiDomain.hpp>
#include <zvapikit/http/HTTPProgress.hpp>
#include <zvapikit/json/URL.hpp>
#include <zvapikit/model/MemoriesDto.hpp>
#include <zvapikit/model/MemoriesRecapDto.hpp>
#include <zvapikit/model/MemoriesVideoLocation.hpp>

#include <boost/asio/awaitable.hpp>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace ZAK {

/// The user's archive of past posts, and the yearly recap videos made from it. Thread safety, executors, lifetimes,
/// cancellation and errors are those of `MobileApiDomain` and `Client`; only what an operation adds to them is told
/// here. When a connection fails the kit itself sends everything again but `generateVideo` and `getVideo`.
///
/// Downloaded videos are kept as files below "memories/" of `directories().documents`, and nowhere else is it noted
/// which there are. A file of up to 20480 bytes counts as a broken download, so as none.
class ZVAPIKIT_API MemoriesDomain : public MobileApiDomain {
 public:
  using MobileApiDomain::MobileApiDomain;

  /// All of the signed-in user's memories. Safe to repeat.
  boost::asio::awaitable<MemoriesDto> fetchAll();
  /// The latest memories, at most `limit` of them. Safe to repeat.
  boost::asio::awaitable<MemoriesDto> fetchFirst(std::int64_t limit);
  /// Deletes a memory. Safe to repeat: after a success it fails with the server's "not found".
  boost::asio::awaitable<void> deleteMemory(std::string memoryId);

  /// The recap videos and how far each of them is. Safe to repeat, and meant to be while one is being generated.
  boost::asio::awaitable<MemoriesRecapsDto> fetchRecaps();
  /// Asks the server to generate the video of a recap, and tells how far it is. Safe to repeat.
  boost::asio::awaitable<MemoriesRecapDto> generateVideo(std::string recapId);
  /// Deletes the videos of a recap on the server. A copy on the device stays: see `deleteLocalVideo`. Safe to
  /// repeat.
  boost::asio::awaitable<void> deleteVideos(std::string recapId);

  /// Where the recap's video lies on the device: at once when it is there, unless `force`, else after downloading it
  /// from `url`, without the kit's headers and the user's token. `location.path(directories().documents)` is the file.
  /// The old file stays whole until the new one is, also when the call fails or is cancelled. Calls for one video share
  /// a transfer. `received` is told of the bytes that have come, as `HTTPProgress` does. Safe to repeat.
  /// \throws ZAKError `urlNotValid` without a URL, or when the name holds `/`, `..` or NUL; `failedToDownloadData` when
  ///   no whole video came, with the reason in the log; std::filesystem::filesystem_error.
  boost::asio::awaitable<MemoriesVideoLocation> getVideo(std::optional<URL> url, bool force, std::string recapName,
                                                         HTTPProgress::Function received = {});
  /// Where the recap's video lies on the device; absent when it does not, or there is no URL. At once, without a
  /// request; safe to repeat.
  /// \throws ZAKError `urlNotValid` when the name holds `/`, `..` or NUL; std::filesystem::filesystem_error.
  [[nodiscard]] std::optional<MemoriesVideoLocation> getLocalVideoLocation(const std::optional<URL>& remoteUrl,
                                                                           const std::string& recapName) const;
  /// Removes the recap's video from the device, at once, without a request; nothing happens without a URL.
  /// \throws ZAKError `urlNotValid` as above; std::filesystem::filesystem_error, also when there is no such file.
  void deleteLocalVideo(const std::optional<URL>& remoteUrl, const std::string& recapName) const;
  /// Downloads a photo to a file, in a directory that exists, as `getVideo` does. A connection that fails is tried once
  /// more. Safe to repeat.
  /// \throws ZAKError `failedToDownloadData`; std::filesystem::filesystem_error.
  boost::asio::awaitable<void> downloadPhoto(URL url, std::filesystem::path destination,
                                             HTTPProgress::Function received = {});
};

}  // namespace ZAK
