#pragma once

#include <zvapikit/Export.hpp>

#include <boost/asio/awaitable.hpp>

#include <string>

namespace ZAK {

/// The host's Firebase sign-in, from which the kit obtains the back-end's own tokens.
///
/// A stored token of an earlier sign-in is used without asking here: call `MobileApiClient::logout()` before another
/// user signs in.
///
/// Thread safety: called from any thread that runs the client's executor. A client asks again while it still waits only
/// after a `clear()` or `logout()`, whose abandoned exchange runs on.
class ZVAPIKIT_API FirebaseAuthentifier {
 public:
  virtual ~FirebaseAuthentifier() = default;

  /// The current Firebase ID token. An exception means that there is none: the call that wanted it goes out
  /// unauthenticated at once. A token that the authentication server refuses is offered to it six times, with back-off,
  /// up to three times a call, so throw rather than yield one that is known to be bad. The object is kept alive while
  /// the awaitable runs. It is not cancelled with a call that waits for it, since others may wait too.
  virtual boost::asio::awaitable<std::string> idToken() = 0;
  /// Signs the user out on the host's side; called by `MobileApiClient::logout()` once the kit's own token is gone.
  virtual void signOut() noexcept = 0;
};

}  // namespace ZAK
