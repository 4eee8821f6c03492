#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/emulator/EmulatorFault.hpp>
#include <zvapikit/emulator/EmulatorOptions.hpp>
#include <zvapikit/emulator/EmulatorRequest.hpp>
#include <zvapikit/http/TransportOptions.hpp>

#include <boost/asio/any_io_executor.hpp>

#include <cstddef>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace ZAK {

/// What an emulator has seen and done since it started.
///
/// Thread safety: as a standard container.
struct ZVAPIKIT_API EmulatorCounts {
  /// Requests by method and path template, e.g. `GET /content/posts/{postId}`; those that fit no route by their path.
  std::map<std::string, std::size_t> requests{};
  std::size_t connections = 0;  ///< taken on so far, the closed ones too
  std::size_t faults = 0;       ///< requests that met a fault
  /// Reports of profiles and posts by their reason. A user's later report of the same replaces the earlier one.
  std::map<std::string, std::size_t> reports{};
  std::size_t analyticsEvents = 0;  ///< in all the batches

  /// Requests under one key of `requests`; 0 when there were none.
  [[nodiscard]] std::size_t of(const std::string& route) const;
};

/// The back-end on one's own machine: the authentication server, the mobile API and the storage bucket of both
/// environments, served over TLS on one loopback port, with their state in memory.
///
/// The executor's context must outlive the emulator; it may be run by several threads. `stop`, or dropping the last
/// reference, ends all its work on the context. Its operations return at once, without a wait to be cancelled.
///
/// Thread safety: callable from any thread, but not by what `EmulatorOptions::now` and `EmulatorFault::predicate` run.
class ZVAPIKIT_API Emulator {
 public:
  /// Listens before it returns; serves once the executor's context runs.
  /// \throws std::invalid_argument for an empty executor; boost::system::system_error when the port is taken.
  [[nodiscard]] static std::shared_ptr<Emulator> start(boost::asio::any_io_executor executor,
                                                       EmulatorOptions options = {});
  /// As `stop`.
  ~Emulator();
  Emulator(const Emulator&) = delete;
  Emulator& operator=(const Emulator&) = delete;

  /// Closes the port and every connection; takes effect as the context runs. May be called more than once.
  void stop();

  /// The port on 127.0.0.1 that it listens on.
  [[nodiscard]] int port() const noexcept;
  /// The authority's certificate in PEM form, readable by this user alone; removed with the emulator.
  [[nodiscard]] const std::filesystem::path& caFile() const noexcept;
  /// Sends a client's requests for the usual hosts here, and makes it trust the certificate. Give the client a keychain
  /// of its own as well: in the default one its tokens would take the place of the real back-end's.
  [[nodiscard]] TransportOptions transportOptions() const;

  /// Makes the authentication servers take the Firebase token as this user's.
  void addFirebaseToken(std::string token, std::string userId);
  /// No access token issued so far is accepted any more; refresh tokens are.
  void expireTokens();
  /// No access or refresh token issued so far is accepted any more.
  void revokeTokens();

  /// Adds a misbehaviour; the result names it for `timesMet`.
  std::size_t inject(EmulatorFault fault);
  /// How many requests met the fault.
  [[nodiscard]] std::size_t timesMet(std::size_t fault) const;
  /// Ends all misbehaviour; what `timesMet` tells is kept.
  void clearFaults();

  /// What it has seen and done so far.
  [[nodiscard]] EmulatorCounts counts() const;
  /// The latest requests, oldest first.
  [[nodiscard]] std::vector<EmulatorRequest> requests() const;

 private:
  struct Parts;
  explicit Emulator(std::unique_ptr<Parts> parts);

  std::unique_ptr<Parts> parts_;
};

}  // namespace ZAK
