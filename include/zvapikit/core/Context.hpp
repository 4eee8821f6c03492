#pragma once

#include <zvapikit/core/Configuration.hpp>
#include <zvapikit/core/DelegateReference.hpp>
#include <zvapikit/core/DeviceInfo.hpp>
#include <zvapikit/core/Servers.hpp>
#include <zvapikit/http/TransportOptions.hpp>
#include <zvapikit/platform/BundleInfo.hpp>
#include <zvapikit/platform/Directories.hpp>

#include <boost/asio/any_io_executor.hpp>

#include <memory>

namespace ZAK {

class Clock;
class FirebaseAuthentifier;
class InterceptorDelegate;
class Keychain;
class LoggerDelegate;
class MonitorDelegate;
class Transport;

/// All that a client is built from. Fill in what is needed and hand it to `MobileApiClient::create`, on a line of its
/// own: as a value that owns memory it must not be a temporary of a `co_await` expression.
///
/// Delegates are held weakly: the host keeps them alive, and one that is gone is simply no longer called.
///
/// Thread safety: as a standard container.
struct Context {
  /// Which environment: production unless the host says otherwise.
  Configuration configuration = {};
  /// The device that every request tells of.
  DeviceInfo deviceInfo = {};
  // The delegates: std::shared_ptr objects that the host keeps. No log, no call? Look whether it still does.
  /// Source of Firebase ID tokens; without one, token requests go out without a token.
  DelegateReference<FirebaseAuthentifier> authentifier = {};
  /// Watches the traffic.
  DelegateReference<MonitorDelegate> monitor = {};
  /// For the host's own use.
  DelegateReference<InterceptorDelegate> interceptor = {};
  /// Receives the kit's log lines; without one there are none.
  DelegateReference<LoggerDelegate> logger = {};

  /// Where the client's work runs: the executor (`io.get_executor()`) of an `io_context`, a `thread_pool`, or a strand
  /// of one. Required, and to be run while calls are awaited. The context behind it may end before the client does;
  /// calls in flight are then dropped without resuming.
  boost::asio::any_io_executor executor = {};
  /// The host application, as told in the User-Agent.
  BundleInfo bundle = {};
  /// Proxy, trusted authorities, time-outs and limits.
  TransportOptions transport = {};
  /// The base URLs; those that were built in unless the host says otherwise.
  Servers servers = {};
  /// Where the token is kept; null means the process's shared handle, `KeychainFactory::shared()`, in which every host
  /// of the user's account has one token an environment.
  std::shared_ptr<Keychain> keychain = nullptr;
  /// Where recap videos and pictures to be sent are kept.
  Directories directories = {};
  /// The kit prints the body of each failing answer to `std::cout`: of one outside 2xx, and of one that is not the
  /// record expected; JSON indented, for anything else the parser's complaint. This shows tokens as `<redacted>` there
  /// and in the log line of a rejected bearer, there also the queries of URLs, which may be signed, and keeps the text
  /// of a JSON parser that quotes a body to itself. Nothing switches the printing off: a host whose standard output
  /// matters gives `std::cout` another buffer.
  bool redactsSecrets = false;

  /// For tests: carries the requests instead of the network when set. The token is then kept in memory unless
  /// `keychain` says otherwise, so that a test cannot sign the developer out.
  std::shared_ptr<Transport> testTransport = nullptr;
  /// For tests: the client's time; null means the machine's clock.
  std::shared_ptr<Clock> clock = nullptr;
};

}  // namespace ZAK
