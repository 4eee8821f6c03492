#pragma once

#include <csignal>
#include <functional>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace ZAK::Tests {

/// A copy of this process, without its other threads, that does one thing and ends. Killed with the object.
class ChildProcess {
 public:
  /// The child ends with the status that `work` yields, or with 255 when it throws.
  explicit ChildProcess(const std::function<int()>& work) : id_(::fork()) {
    if (id_ != 0) return;
    int status = 255;
    try {
      status = work();
    } catch (...) {
    }
    ::_exit(status);
  }
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;
  ~ChildProcess() { static_cast<void>(kill()); }

  /// False when it had ended before.
  [[nodiscard]] bool kill() { return id_ > 0 && ::kill(id_, SIGKILL) == 0 && wait() == -1; }
  /// Asks it to end, and waits.
  int stop() {
    ::kill(id_, SIGTERM);
    return wait();
  }
  /// The status that it ends with; -1 when it is killed. To be called once.
  int wait() {
    int status = 0;
    ::waitpid(std::exchange(id_, -1), &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

 private:
  pid_t id_;
};

}  // namespace ZAK::Tests
