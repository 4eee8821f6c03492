#include "Backend.hpp"

#include "Call.hpp"
#include "Hosts.hpp"

#include <algorithm>

namespace ZAK {

namespace {

EmulatorOptions withClock(EmulatorOptions options) {
  if (!options.now) {
    options.now = [] { return std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now()); };
  }
  return options;
}

/// Fills in which server the request is for, and the path below that server's base.
void locate(EmulatorRequest& request) {
  const std::string_view host = std::string_view(request.host).substr(0, request.host.rfind(':'));
  const std::string_view path = std::string_view(request.target).substr(0, request.target.find('?'));
  request.path = path;
  for (const Site& site : sites()) {
    if (!EmulatorText::equalIgnoringCase(site.host, host) || !path.starts_with(site.base)) continue;
    const std::string_view below = path.substr(site.base.size());
    if (!below.empty() && below.front() != '/') continue;
    request.server = site.server;
    request.environment = site.environment;
    request.path = below;
    return;
  }
}

/// The token of an Authorization header of the bearer scheme; empty when there is none.
std::string bearer(const EmulatorRequest& request) {
  constexpr std::string_view scheme = "Bearer ";
  const std::string* const value = request.header("Authorization");
  return value && value->starts_with(scheme) ? value->substr(scheme.size()) : std::string();
}

void checkFixedHeaders(const EmulatorRequest& request) {
  for (const char* name :
       {"Accept-Encoding", "Accept-Language", "User-Agent", "zolvi-platform", "zolvi-device-language",
        "zolvi-app-version", "zolvi-os-version", "zolvi-app-language", "zolvi-timezone", "zolvi-device-id"}) {
    if (!request.header(name)) throw Refusal(400, std::string("header ") + name + " is missing");
  }
}

}  // namespace

const std::string* EmulatorRequest::header(std::string_view name) const {
  const auto found = std::find_if(headers.begin(), headers.end(), [&](const auto& header) {
    return EmulatorText::equalIgnoringCase(header.first, name);
  });
  return found == headers.end() ? nullptr : &found->second;
}

Backend::Backend(EmulatorOptions options)
    : options_(withClock(std::move(options))),
      sandbox_(EmulatorEnvironment::sandbox, options_, options_.now()),
      production_(EmulatorEnvironment::production, options_, options_.now()) {
  addAuthenticationRoutes(authentication_);
  addPhoneRoutes(authentication_);
  addContentRoutes(mobile_);
  addRelationshipsRoutes(mobile_);
  addPeopleRoutes(mobile_);
  addProfileRoutes(mobile_);
  addModerationRoutes(mobile_);
  addFeedRoutes(mobile_);
  addMemoryRoutes(mobile_);
  addSettingsRoutes(mobile_);
  addAnalyticsRoutes(mobile_);
  addUploadRoutes(mobile_);
  addStorageRoutes(storage_);
}

Delivery Backend::serve(EmulatorRequest request) {
  const std::scoped_lock lock(mutex_);
  locate(request);
  Router::Match match = router(request).match(request.method, request.path);
  record(request, match);
  const EmulatorFault* const fault = faults_.meet(request);
  if (!fault) return Delivery(respond(request, std::move(match)));
  spoilToken(request, fault->token);
  if (fault->raw) return Delivery({}, fault);
  return Delivery(fault->answer ? *fault->answer : respond(request, std::move(match)), fault);
}

World& Backend::world(const EmulatorRequest& request) {
  return request.environment == EmulatorEnvironment::production ? production_ : sandbox_;
}

const Router& Backend::router(const EmulatorRequest& request) const {
  static const Router none;
  switch (request.server) {
    case EmulatorServer::mobile:
      return mobile_;
    case EmulatorServer::authentication:
      return authentication_;
    case EmulatorServer::storage:
      return storage_;
    case EmulatorServer::unknown:
      break;
  }
  return none;
}

void Backend::record(EmulatorRequest request, const Router::Match& match) {
  ++counts_.requests[request.method + " " + (match.route ? match.route->path.text() : request.path)];
  requests_.push_back(std::move(request));
  if (requests_.size() > options_.recordedRequests) requests_.pop_front();
}

void Backend::spoilToken(const EmulatorRequest& request, EmulatorFault::Token spoiling) {
  TokenStore& tokens = world(request).tokens;
  if (spoiling == EmulatorFault::Token::expire) tokens.expire(bearer(request));
  if (spoiling == EmulatorFault::Token::revoke) tokens.revoke(bearer(request));
}

EmulatorResponse Backend::respond(const EmulatorRequest& request, Router::Match match) {
  const Date now = options_.now();
  try {
    return dispatch(request, std::move(match), now);
  } catch (const Refusal& refusal) {
    return refusalResponse(refusal, now);
  } catch (const std::exception& error) {
    return refusalResponse(Refusal(500, error.what()), now);
  }
}

EmulatorResponse Backend::dispatch(const EmulatorRequest& request, Router::Match match, Date now) {
  if (request.server == EmulatorServer::unknown) throw Refusal(421, "no server has this host and base path");
  if (options_.requiresFixedHeaders && request.server != EmulatorServer::storage) checkFixedHeaders(request);
  if (!match.route) throw Refusal(match.pathKnown ? 405 : 404, "there is no " + request.method + " " + request.path);
  Call call{request, options_, world(request), now, std::move(match.variables)};
  if (request.server == EmulatorServer::mobile) {
    const auto user = call.world.tokens.user(bearer(request), now);
    if (!user) throw Refusal(401, "the access token is missing, unknown or expired");
    call.userId = *user;
  }
  return match.route->handler(call);
}

void Backend::countConnection() {
  const std::scoped_lock lock(mutex_);
  ++counts_.connections;
}

void Backend::addFirebaseToken(const std::string& token, const std::string& userId) {
  const std::scoped_lock lock(mutex_);
  sandbox_.firebaseTokens[token] = userId;
  production_.firebaseTokens[token] = userId;
}

void Backend::expireTokens() {
  const std::scoped_lock lock(mutex_);
  sandbox_.tokens.expireAll();
  production_.tokens.expireAll();
}

void Backend::revokeTokens() {
  const std::scoped_lock lock(mutex_);
  sandbox_.tokens.revokeAll();
  production_.tokens.revokeAll();
}

std::size_t Backend::inject(EmulatorFault fault) {
  const std::scoped_lock lock(mutex_);
  return faults_.add(std::move(fault));
}

std::size_t Backend::timesMet(std::size_t fault) const {
  const std::scoped_lock lock(mutex_);
  return faults_.timesMet(fault);
}

void Backend::clearFaults() {
  const std::scoped_lock lock(mutex_);
  faults_.clear();
}

EmulatorCounts Backend::counts() const {
  const std::scoped_lock lock(mutex_);
  EmulatorCounts counts = counts_;
  counts.faults = faults_.timesMet();
  for (const World* const world : {&sandbox_, &production_}) {
    for (const auto& [report, reason] : world->reports) ++counts.reports[reason];
  }
  counts.analyticsEvents = sandbox_.analyticsEvents + production_.analyticsEvents;
  return counts;
}

std::vector<EmulatorRequest> Backend::requests() const {
  const std::scoped_lock lock(mutex_);
  return {requests_.begin(), requests_.end()};
}

}  // namespace ZAK
