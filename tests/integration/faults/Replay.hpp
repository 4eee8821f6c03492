#pragma once

#include "integration/kit/Kit.hpp"
#include "integration/support/FaultServer.hpp"

#include <zvapikit/http/HTTPError.hpp>

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace ZAK::Tests {

/// What goes wrong between a client and a server, and when.
struct NetworkFault {
  enum class Step {
    accepted,  ///< the connection stands, and not a byte was read
    greeted,   ///< the client has begun the handshake; `bytes` answer it, below TLS
    secured,   ///< the handshake is over, and nothing of the request was read
    asked      ///< the request has come; `bytes` answer it
  };
  enum class Ending {
    close,  ///< TLS is closed in good order, then TCP
    drop,   ///< TCP is closed (FIN) without a word at the TLS level
    reset,  ///< TCP is reset (RST)
    stall   ///< nothing more happens
  };

  Step step;
  Ending ending;
  std::string bytes{};
};

/// How an exchange ended, and what it took.
struct Replayed {
  bool succeeded = false;
  /// An answer came whole and was not the record.
  bool undecodable = false;
  std::optional<HTTPError> error;
  /// How often the server met the exchange with the fault.
  int met = 0;
};

/// One exchange of an app, to be made again and again with a server that does to it what the fault says.
///
/// Each time it is checked that the exchange leaves no trace beyond itself: a token that is there stays, one that could
/// not be had is not there, and no other request is sent.
class Replay {
 public:
  enum class Exchange {
    reading,    ///< an authenticated GET, which the kit sends three times at most
    signingIn,  ///< the POST for the first token
    uploading   ///< a PUT of 200 kB to an address outside the API
  };

  struct Options {
    /// Before a stall counts as one.
    std::chrono::milliseconds patience = std::chrono::seconds(20);
    /// Of an upload.
    int maxRetries = 0;
    /// Nobody listens on the server's port.
    bool refuses = false;
  };

  explicit Replay(Exchange exchange) : Replay(exchange, Options()) {}
  Replay(Exchange exchange, Options options);

  Replayed run(NetworkFault fault);
  /// Makes the exchange with a server that answers as it should.
  Replayed runHealthy();

  /// How often the request is sent while there is nothing of an answer.
  [[nodiscard]] int attempts() const noexcept;

 private:
  class TokenFailures;

  [[nodiscard]] Context context();
  [[nodiscard]] awaitable<void> call();
  void serve(FaultServer::Connection& connection);
  void expectNoTrace(const Replayed& replayed, int elsewhere);

  const Exchange exchange_;
  const Options options_;
  std::shared_ptr<Replayed> replayed_ = std::make_shared<Replayed>();
  std::mutex mutex_;
  NetworkFault fault_;
  std::atomic<int> met_ = 0;
  FaultServer faulty_;
  FaultServer healthy_;
  Kit kit_{{.redactsSecrets = true}};
  std::shared_ptr<TokenFailures> logger_;
};

/// The body of the answer that the exchange expects.
[[nodiscard]] std::string healthyBody(Replay::Exchange exchange);

/// How the end of an answer is told.
enum class Framing { length, chunks, connection };

/// An answer of 200, after which the connection is not used again.
[[nodiscard]] std::string answered(const std::string& body, Framing framing = Framing::length);

}  // namespace ZAK::Tests
