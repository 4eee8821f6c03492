#include "Backend.hpp"
#include "Hosts.hpp"
#include "Listener.hpp"
#include "TemporaryFile.hpp"

#include <zvapikit/emulator/Emulator.hpp>
#include <zvapikit/emulator/EmulatorThread.hpp>

#include <stdexcept>

namespace ZAK {

struct Emulator::Parts {
  std::shared_ptr<Backend> backend;
  std::shared_ptr<Listener> listener;
  TemporaryFile caFile;
};

std::size_t EmulatorCounts::of(const std::string& route) const {
  const auto found = requests.find(route);
  return found == requests.end() ? 0 : found->second;
}

std::shared_ptr<Emulator> Emulator::start(boost::asio::any_io_executor executor, EmulatorOptions options) {
  if (!executor) throw std::invalid_argument("the emulator needs an executor");
  if (options.port < 0 || options.port > 65535) throw std::invalid_argument("the port is not one of TCP");
  if (options.pageSize == 0) throw std::invalid_argument("a page holds at least one element");
  ServerIdentity identity(options.certificate);
  const std::string authority = identity.authority;
  const int port = options.port;
  auto backend = std::make_shared<Backend>(std::move(options));
  auto listener = std::make_shared<Listener>(std::move(executor), port, std::move(identity), backend);
  std::unique_ptr<Parts> parts(new Parts{std::move(backend), std::move(listener), {"authority.pem", authority}});
  parts->listener->start();
  return std::shared_ptr<Emulator>(new Emulator(std::move(parts)));
}

Emulator::Emulator(std::unique_ptr<Parts> parts) : parts_(std::move(parts)) {}

Emulator::~Emulator() { stop(); }

void Emulator::stop() { parts_->listener->stop(); }

int Emulator::port() const noexcept { return parts_->listener->port(); }

const std::filesystem::path& Emulator::caFile() const noexcept { return parts_->caFile.path(); }

TransportOptions Emulator::transportOptions() const {
  TransportOptions options;
  options.caFile = caFile();
  for (const std::string& host : hosts()) options.connectTo.emplace_back(host, 0, "127.0.0.1", port());
  return options;
}

void Emulator::addFirebaseToken(std::string token, std::string userId) {
  parts_->backend->addFirebaseToken(token, userId);
}

void Emulator::expireTokens() { parts_->backend->expireTokens(); }

void Emulator::revokeTokens() { parts_->backend->revokeTokens(); }

std::size_t Emulator::inject(EmulatorFault fault) { return parts_->backend->inject(std::move(fault)); }

std::size_t Emulator::timesMet(std::size_t fault) const { return parts_->backend->timesMet(fault); }

void Emulator::clearFaults() { parts_->backend->clearFaults(); }

EmulatorCounts Emulator::counts() const { return parts_->backend->counts(); }

std::vector<EmulatorRequest> Emulator::requests() const { return parts_->backend->requests(); }

EmulatorThread::EmulatorThread(EmulatorOptions options)
    : emulator_(Emulator::start(context_.get_executor(), std::move(options))), thread_([this] { context_.run(); }) {}

EmulatorThread::~EmulatorThread() {
  emulator_->stop();
  thread_.join();
}

}  // namespace ZAK
