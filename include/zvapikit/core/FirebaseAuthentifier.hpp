#pragma once

#include <boost/asio/awaitable.hpp>

#include <string>

namespace ZAK {

/// The host's Firebase sign-in, from which the kit obtains the back-end's own tokens.
///
/// Thread safety: called from any thread that runs the client's executor; never twice at once by one client.
class FirebaseAuthentifier {
 public:
  virtual ~FirebaseAuthentifier() = default;

  /// The current Firebase ID token. An exception means that there is none: the call that wanted it goes out
  /// unauthenticated. The object is kept alive while the awaitable runs.
  virtual boost::asio::awaitable<std::string> idToken() = 0;
  /// Signs the user out on the host's side; called by `MobileApiClient::logout()` once the kit's own token is gone.
  virtual void signOut() noexcept = 0;
};

}  // namespace ZAK
