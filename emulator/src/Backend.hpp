#pragma once

#include "Delivery.hpp"
#include "FaultScript.hpp"
#include "Router.hpp"
#include "World.hpp"

#include <zvapikit/emulator/Emulator.hpp>

#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace ZAK {

/// The servers without their sockets: a request in, the bytes of its answer out. May be used from any thread.
class Backend {
 public:
  explicit Backend(EmulatorOptions options);

  [[nodiscard]] Delivery serve(EmulatorRequest request);
  void countConnection();

  void addFirebaseToken(const std::string& token, const std::string& userId);
  void expireTokens();
  void revokeTokens();

  std::size_t inject(EmulatorFault fault);
  [[nodiscard]] std::size_t timesMet(std::size_t fault) const;
  void clearFaults();
  [[nodiscard]] EmulatorCounts counts() const;
  [[nodiscard]] std::vector<EmulatorRequest> requests() const;

 private:
  [[nodiscard]] World& world(const EmulatorRequest& request);
  [[nodiscard]] const Router& router(const EmulatorRequest& request) const;
  void spoilToken(const EmulatorRequest& request, EmulatorFault::Token spoiling);
  [[nodiscard]] EmulatorResponse respond(const EmulatorRequest& request, Router::Match match);
  [[nodiscard]] EmulatorResponse dispatch(const EmulatorRequest& request, Router::Match match, Date now);
  void record(EmulatorRequest request, const Router::Match& match);

  const EmulatorOptions options_;
  Router authentication_;
  Router mobile_;
  Router storage_;
  mutable std::mutex mutex_;
  World sandbox_;
  World production_;
  FaultScript faults_;
  EmulatorCounts counts_;
  std::deque<EmulatorRequest> requests_;
};

}  // namespace ZAK
