#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/emulator/Emulator.hpp>

#include <boost/asio/io_context.hpp>

#include <memory>
#include <thread>

namespace ZAK {

/// An emulator that runs in a thread of its own, from construction to destruction.
class ZVAPIKIT_API EmulatorThread {
 public:
  explicit EmulatorThread(EmulatorOptions options = {});
  /// Stops the emulator and waits for the thread.
  ~EmulatorThread();
  EmulatorThread(const EmulatorThread&) = delete;
  EmulatorThread& operator=(const EmulatorThread&) = delete;

  [[nodiscard]] Emulator* operator->() const noexcept { return emulator_.get(); }
  [[nodiscard]] Emulator& operator*() const noexcept { return *emulator_; }

 private:
  boost::asio::io_context context_{1};
  std::shared_ptr<Emulator> emulator_;
  std::thread thread_;
};

}  // namespace ZAK
