#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/core/CollectionDto.hpp>
#include <zvapikit/core/MobileApiDomain.hpp>
#include <zvapikit/http/HTTPProgress.hpp>
#include <zvapikit/model/UploadUrlDto.hpp>

#include <boost/asio/awaitable.hpp>

#include <filesystem>
#include <string>

namespace ZAK {

/// Uploads of pictures, in three steps: ask for a signed URL, upload to it, then name the file's bucket and path in the
/// operation that it is for, as `UploadUrlDto::picture` and `UploadUrlDto::media` do. Every picture is a JPEG. When a
/// connection fails the kit itself sends everything again. Thread safety, executors, lifetimes, cancellation and errors
/// are those of `MobileApiDomain` and `Client`; only what an operation adds to them is told here.
class ZVAPIKIT_API UploadDomain : public MobileApiDomain {
 public:
  using MobileApiDomain::MobileApiDomain;

  /// A URL for each picture of a post, one as good as the other. Safe to repeat: each call yields fresh URLs.
  boost::asio::awaitable<CollectionDto<UploadUrlDto>> askPostUploadUrls();
  /// A URL for the selfie that is stored for an emoji. Safe to repeat.
  boost::asio::awaitable<UploadUrlDto> askProfileQuibletUploadUrl();
  /// A URL for the selfie of one reaction. Safe to repeat.
  boost::asio::awaitable<UploadUrlDto> askInstantQuibletUploadUrl();

  /// Uploads `data`. Several uploads may run at once. Safe to repeat while the URL is accepted; when it expires is the
  /// storage's to judge, not the kit's. A connection that fails is tried up to three times more; 60 s without a byte
  /// moving is a failure. After a cancellation the storage may have the file all the same.
  ///
  /// The request carries the signed headers alone, with the content type of a JPEG unless they name one: nothing of the
  /// kit's, and no token. What the storage answers is logged. `sent` is told of the bytes that have gone out, as
  /// `HTTPProgress` does.
  /// \throws HTTPError when no whole answer came; ZAKError `failedToUploadWithSignedUrl` when the storage refused.
  boost::asio::awaitable<void> upload(std::string data, UploadUrlDto with, HTTPProgress::Function sent = {});
  /// The same with the content of a file, which is read while it is sent and must not change meanwhile.
  /// \throws HTTPError as `upload`, and of kind `fileSystem` when the file cannot be read; ZAKError as `upload`.
  boost::asio::awaitable<void> uploadFile(std::filesystem::path file, UploadUrlDto with,
                                          HTTPProgress::Function sent = {});
};

}  // namespace ZAK
