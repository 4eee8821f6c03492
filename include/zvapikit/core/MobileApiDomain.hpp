#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/core/Configuration.hpp>
#include <zvapikit/core/Domain.hpp>
#include <zvapikit/platform/Directories.hpp>

#include <memory>

namespace ZAK {

class MobileApiClient;

/// Base of the endpoint groups: cheap objects that hold their client weakly. A group that outlives its client fails
/// every call with `ZAKError::noClientAvailable` and never revives.
///
/// g++ 12 does not compile a braced list inside a `co_await` expression (`co_await group.deleteComments({"a"}, ...)`),
/// destroys a value chosen there by `?:` twice (`co_await group.fetchFof(known ? *known : CursorDto::start())`), and
/// may destroy a coroutine's parameters too early around `if (co_await ...)`: give the list, the choice and the result
/// a name first.
///
/// Each operation is an ordinary function that takes its arguments by value and builds its whole request; nothing it
/// was given needs to outlive the call, and an awaitable that is never awaited does nothing. Whatever fails is thrown
/// when the awaitable is awaited, never by the call itself. See `Client` for executors, cancellation and repeats.
///
/// Errors of every operation: `ZAKError` of the cases `apiError` (the server refused and says why), `httpError` (no
/// answer, or a failing one without words), `noClientAvailable` and `urlNotValid` (an identifier that would climb the
/// path; nothing was sent); `DecodingError`; `EncodingError` for text that is not UTF-8; `boost::system::system_error`
/// of `operation_aborted` after a cancellation. What an operation throws beyond these it says itself.
///
/// Thread safety: operations may be called from any thread, any number at once.
class ZVAPIKIT_API MobileApiDomain : public Domain {
 public:
  /// A group of operations that go through this client.
  /// \throws std::invalid_argument when `client` is null.
  explicit MobileApiDomain(const std::shared_ptr<MobileApiClient>& client);
  /// A client that nobody keeps would be gone at once: name it, and keep it as long as the group.
  explicit MobileApiDomain(std::shared_ptr<MobileApiClient>&& client) = delete;

  /// The client's environment.
  [[nodiscard]] const Configuration& configuration() const noexcept { return configuration_; }
  /// Where the client's files are.
  [[nodiscard]] const Directories& directories() const noexcept { return directories_; }
  /// The client.
  /// \throws ZAKError `noClientAvailable` when the client is gone.
  [[nodiscard]] std::shared_ptr<MobileApiClient> client() const;

 protected:
  /// The client, which may be gone.
  [[nodiscard]] const std::weak_ptr<MobileApiClient>& weakClient() const noexcept { return client_; }

 private:
  Configuration configuration_;
  Directories directories_;
  std::weak_ptr<MobileApiClient> client_;
};

}  // namespace ZAK
