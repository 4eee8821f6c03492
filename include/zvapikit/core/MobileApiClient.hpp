#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/core/Client.hpp>
#include <zvapikit/http/HTTPResponse.hpp>
#include <zvapikit/platform/Directories.hpp>

#include <memory>

namespace ZAK {

struct Context;
class HTTPClient;

/// The one object through which every call of the kit reaches the network. The host makes it from a `Context`, makes
/// endpoint groups from it, and keeps it as long as they are used. Dropping it is all the tear-down there is: calls in
/// flight finish.
///
/// Thread safety: all operations may be called from any thread, any number at once.
class ZVAPIKIT_API MobileApiClient final : public Client {
  struct Parts;

 public:
  /// Builds a client. Nothing is sent.
  /// \throws std::invalid_argument when the context's executor is empty, or a base URL of its environment is not an
  ///   absolute https URL without user and query.
  static std::shared_ptr<MobileApiClient> create(Context context);

  /// Not for hosts: use `create`.
  explicit MobileApiClient(std::unique_ptr<Parts> parts);
  ~MobileApiClient() override;

  [[nodiscard]] const Configuration& configuration() const noexcept override;
  [[nodiscard]] const DeviceInfo& deviceInfo() const noexcept override;
  [[nodiscard]] std::shared_ptr<LoggerDelegate> logger() const override;
  void setLogger(DelegateReference<LoggerDelegate> logger) override;

  /// Where the client's files are: the context's directories, each with its default where the context named none.
  [[nodiscard]] const Directories& directories() const noexcept;

  /// Forgets the token, in memory and in the keychain. A token exchange that is under way is not cancelled, but what
  /// it brings is dropped. Sends nothing; fails only by cancellation. Safe to repeat.
  boost::asio::awaitable<void> clear();

  /// Does what `clear()` does, then signs the user out of the host's Firebase authentifier, if that is still there.
  /// Cancelled meanwhile it may have done the first without the second. Safe to repeat.
  boost::asio::awaitable<void> logout();

  /// A bare HTTP client over this client's connections, for absolute URLs outside the kit's two servers: no base URL,
  /// none of the kit's headers, no token, no validators but the default one. It follows at most 5 redirects and reports
  /// to the client's monitor. Repeats are those that `HTTPClient::create` tells of, up to `HTTPRequest::maxRetries`.
  [[nodiscard]] std::shared_ptr<HTTPClient> buildRaw() const;

  /// Sends a request that has a destination through a client as `buildRaw` makes them. Calls for one URL (its query
  /// aside) and destination share a transfer: whoever comes later waits for it and is told of its progress.
  /// When the call that transfers is cancelled, one that waits takes over. Otherwise as `HTTPClient::fetch`.
  /// Safe to repeat.
  /// \throws std::invalid_argument when the request has no destination.
  boost::asio::awaitable<HTTPResponse> download(HTTPRequest request);

 private:
  boost::asio::awaitable<void> send(HTTPRequest request, Route route, DecodeTarget target) override;
  static boost::asio::awaitable<void> sendKeeping(std::shared_ptr<MobileApiClient> self, HTTPRequest request,
                                                  Route route, DecodeTarget target);
  static boost::asio::awaitable<void> clearKeeping(std::shared_ptr<MobileApiClient> self, bool signsOut);

  std::unique_ptr<Parts> parts_;
};

}  // namespace ZAK
