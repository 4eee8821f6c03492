#include "auth/AuthentifierValidator.hpp"
#include "auth/DefaultTokenSupplicant.hpp"
#include "auth/KeychainTokenStorage.hpp"
#include "auth/LoginValidator.hpp"
#include "auth/MobileApiAuthentifier.hpp"
#include "auth/TokenManager.hpp"
#include "core/ClientMonitor.hpp"
#include "core/ErrorApiValidator.hpp"
#include "core/HeadersFactory.hpp"
#include "core/MobileApiRequestExecutor.hpp"
#include "http/Cancellation.hpp"
#include "http/ContextStrand.hpp"
#include "http/FileDownloads.hpp"

#include <zvapikit/core/Context.hpp>
#include <zvapikit/core/FirebaseAuthentifier.hpp>
#include <zvapikit/core/MobileApiClient.hpp>
#include <zvapikit/http/CurlTransport.hpp>
#include <zvapikit/http/HTTPClient.hpp>
#include <zvapikit/keychain/InMemoryKeychain.hpp>
#include <zvapikit/keychain/KeychainFactory.hpp>

#include <mutex>
#include <stdexcept>

namespace ZAK {
namespace {

/// Redirects that a bare download follows.
constexpr int maxRawRedirects = 5;

URL baseURL(const std::string& text) {
  const auto url = URL::parse(text);
  if (!url || url->scheme() != "https" || url->host().empty() || url->withoutQuery() != url->string() ||
      text.find('@') != std::string::npos) {
    throw std::invalid_argument("not an absolute https URL without user and query: " + text);
  }
  return *url;
}

JSONDecoder serverDecoder(const std::shared_ptr<Clock>& clock) {
  return JSONDecoder(JSONDateStrategy::javaScriptISO8601, [clock] { return clock->now(); });
}

}  // namespace

struct MobileApiClient::Parts {
  Configuration configuration;
  DeviceInfo deviceInfo;
  Directories directories;
  std::shared_ptr<Clock> clock;
  std::shared_ptr<Transport> transport;
  std::shared_ptr<FileDownloads> downloads = std::make_shared<FileDownloads>();
  std::shared_ptr<ClientMonitor> authMonitor;
  std::shared_ptr<RequestExecutor> authExecutor;
  std::shared_ptr<MobileApiAuthentifier> authentifier;
  std::shared_ptr<ClientMonitor> monitor;
  std::shared_ptr<RequestExecutor> regularExecutor;
  std::shared_ptr<ContextStrand> spawnStrand;
  DelegateReference<LoggerDelegate> logger;
  std::mutex loggerMutex = {};

  static std::unique_ptr<Parts> build(Context context);

 private:
  /// An HTTP client of the kit's own, with the fixed headers.
  [[nodiscard]] std::shared_ptr<HTTPClient> makeClient(const Context& context, const std::string& base,
                                                       const std::shared_ptr<ClientMonitor>& delegate) const;
};

std::shared_ptr<HTTPClient> MobileApiClient::Parts::makeClient(const Context& context, const std::string& base,
                                                               const std::shared_ptr<ClientMonitor>& delegate) const {
  auto client = HTTPClient::create(transport, baseURL(base), clock);
  client->headers = HeadersFactory(deviceInfo, context.bundle.sanitized(), PlatformFacts::current()).headers();
  client->delegate = delegate;
  return client;
}

std::unique_ptr<MobileApiClient::Parts> MobileApiClient::Parts::build(Context context) {
  auto parts = std::make_unique<Parts>();
  const auto environment = context.configuration.environment;
  parts->configuration = context.configuration;
  parts->deviceInfo = context.deviceInfo;
  parts->directories = context.directories.resolved(context.bundle);
  parts->spawnStrand = ContextStrand::create(context.executor);
  parts->logger = context.logger;
  parts->clock = context.clock ? context.clock : Clock::system();
  parts->transport =
      context.testTransport ? context.testTransport : CurlTransport::create(context.executor, context.transport);

  const std::string& authBase = context.servers.auth(environment);
  parts->authMonitor = std::make_shared<ClientMonitor>(context.monitor);
  const auto authClient = parts->makeClient(context, authBase, parts->authMonitor);
  authClient->insertValidatorAtFront(std::make_shared<AuthentifierValidator>());
  parts->authExecutor = std::make_shared<MobileApiRequestExecutor>(context.logger, serverDecoder(parts->clock),
                                                                   authClient, context.redactsSecrets);

  auto keychain = context.keychain        ? context.keychain
                  : context.testTransport ? std::make_shared<InMemoryKeychain>()
                                          : KeychainFactory::shared();
  parts->authentifier = std::make_shared<MobileApiAuthentifier>(
      context.authentifier,
      TokenManager::create(
          context.executor, std::make_unique<KeychainTokenStorage>(environment, std::move(keychain), context.logger),
          std::make_unique<DefaultTokenSupplicant>(context.configuration, authBase, parts->authExecutor,
                                                   context.authentifier, context.logger),
          context.logger, parts->clock));

  parts->monitor = std::make_shared<ClientMonitor>(context.monitor);
  const auto regularClient = parts->makeClient(context, context.servers.mobile(environment), parts->monitor);
  regularClient->insertValidatorAtFront(std::make_shared<ErrorApiValidator>(serverDecoder(parts->clock)));
  regularClient->insertValidatorAtFront(std::make_shared<LoginValidator>(
      parts->authentifier, context.logger, serverDecoder(parts->clock), context.redactsSecrets));
  parts->regularExecutor = std::make_shared<MobileApiRequestExecutor>(context.logger, serverDecoder(parts->clock),
                                                                      regularClient, context.redactsSecrets);
  return parts;
}

std::shared_ptr<MobileApiClient> MobileApiClient::create(Context context) {
  if (!context.executor) throw std::invalid_argument("a client needs an executor");
  return std::make_shared<MobileApiClient>(Parts::build(std::move(context)));
}

MobileApiClient::MobileApiClient(std::unique_ptr<Parts> parts) : parts_(std::move(parts)) {}

MobileApiClient::~MobileApiClient() = default;

const Configuration& MobileApiClient::configuration() const noexcept { return parts_->configuration; }

const DeviceInfo& MobileApiClient::deviceInfo() const noexcept { return parts_->deviceInfo; }

const Directories& MobileApiClient::directories() const noexcept { return parts_->directories; }

std::shared_ptr<LoggerDelegate> MobileApiClient::logger() const {
  const std::lock_guard lock(parts_->loggerMutex);
  return parts_->logger.lock();
}

void MobileApiClient::setLogger(DelegateReference<LoggerDelegate> logger) {
  const std::lock_guard lock(parts_->loggerMutex);
  parts_->logger = std::move(logger);
}

std::shared_ptr<HTTPClient> MobileApiClient::buildRaw() const {
  auto client = HTTPClient::create(parts_->transport, std::nullopt, parts_->clock);
  client->delegate = parts_->monitor;
  client->maxRedirects = maxRawRedirects;
  return client;
}

boost::asio::awaitable<HTTPResponse> MobileApiClient::download(HTTPRequest request) {
  if (!request.destination) throw std::invalid_argument("a download needs a destination");
  return parts_->downloads->fetch(buildRaw(), std::move(request));
}

std::shared_ptr<MobileApiClient> MobileApiClient::shared() {
  return std::static_pointer_cast<MobileApiClient>(shared_from_this());
}

boost::asio::any_io_executor MobileApiClient::spawnExecutor() const { return parts_->spawnStrand->executor(); }

void MobileApiClient::SpawnCancellation::operator()(boost::asio::cancellation_type type) const {
  const auto running = client.lock();
  if (!running) return;  // and so nothing is under way
  running->parts_->spawnStrand->post([signal = operation, type] {
    if (const auto call = signal.lock()) call->emit(type);
  });
}

boost::asio::awaitable<void> MobileApiClient::send(HTTPRequest request, Route route, DecodeTarget target) {
  return sendKeeping(shared(), std::move(request), route, target);
}

boost::asio::awaitable<void> MobileApiClient::sendKeeping(std::shared_ptr<MobileApiClient> self, HTTPRequest request,
                                                          Route route, DecodeTarget target) {
  co_await acceptAllCancellation();
  const Parts& parts = *self->parts_;
  if (route == Route::signedIn) {
    request.maxRetries = MobileApiAuthentifier::maxRetries;
    // What is never sent needs no token.
    if (!request.climbsPath()) {
      const std::optional<TokenDto> token = co_await parts.authentifier->tokenManager()->validToken();
      MobileApiAuthentifier::sign(request, token);
    }
  }
  const auto& executor = route == Route::auth ? parts.authExecutor : parts.regularExecutor;
  co_await executor->execute(std::move(request), target);
}

boost::asio::awaitable<void> MobileApiClient::clear() { return clearKeeping(shared(), false); }

boost::asio::awaitable<void> MobileApiClient::logout() { return clearKeeping(shared(), true); }

boost::asio::awaitable<void> MobileApiClient::clearKeeping(std::shared_ptr<MobileApiClient> self, bool signsOut) {
  co_await acceptAllCancellation();
  const auto authentifier = self->parts_->authentifier;
  co_await authentifier->tokenManager()->clear();
  if (!signsOut) co_return;
  if (const auto firebase = authentifier->firebaseAuthentifier()) firebase->signOut();
}

}  // namespace ZAK
