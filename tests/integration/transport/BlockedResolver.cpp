#include "BlockedResolver.hpp"

#include <condition_variable>
#include <dlfcn.h>
#include <mutex>
#include <netdb.h>
#include <string_view>

namespace ZAK::Tests {
namespace {

struct State {
  std::mutex mutex;
  std::condition_variable changed;
  bool blocks = false;
  int blocked = 0;
};

/// Never destroyed: a look-up may still hang when the process ends.
State& state() {
  static State& instance = *new State;
  return instance;
}

}  // namespace

void blockResolver(bool blocks) {
  const std::lock_guard lock(state().mutex);
  state().blocks = blocks;
  state().changed.notify_all();
}

int blockedLookUps() {
  const std::lock_guard lock(state().mutex);
  return state().blocked;
}

}  // namespace ZAK::Tests

/// Stands before the C library's function of this name for all of the program, libcurl included.
extern "C" int getaddrinfo(const char* node, const char* service, const addrinfo* hints, addrinfo** result) {
  static const auto original = reinterpret_cast<decltype(&getaddrinfo)>(::dlsym(RTLD_NEXT, "getaddrinfo"));
  const std::string_view name = node != nullptr ? node : "";
  if (name == "blocked.test") {
    auto& current = ZAK::Tests::state();
    std::unique_lock lock(current.mutex);
    ++current.blocked;
    current.changed.wait(lock, [&] { return !current.blocks; });
    --current.blocked;
    lock.unlock();
    return original("127.0.0.1", service, hints, result);
  }
  if (name != "two.test") return original(node, service, hints, result);
  addrinfo* second = nullptr;
  if (const int error = original("127.0.0.1", service, hints, &second); error != 0) return error;
  if (const int error = original("127.0.0.2", service, hints, result); error != 0) return error;
  addrinfo* last = *result;
  while (last->ai_next != nullptr) last = last->ai_next;
  last->ai_next = second;
  return 0;
}
