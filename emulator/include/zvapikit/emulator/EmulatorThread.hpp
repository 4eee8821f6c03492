#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/emulator/Emulator.hpp>

#include <boost/asio/io_context.hpp>

#include <memory>
#include <thread>

namespace ZAK {

/// An emulator that runs in a thread of its own, from construction to destruction.
///
/// Thread safety: the emulator may be used from any thread while this object is there.
class ZVAPIKIT_API EmulatorThread {
 public:
  /// Starts an emulator and the thread that serves.
  /// \throws boost::system::system_error when the port is taken.
  explicit EmulatorThread(EmulatorOptions options = {});
  /// Stops the emulator and waits for the thread.
  ~EmulatorThread();
  EmulatorThread(const EmulatorThread&) = delete;
  EmulatorThread& operator=(const EmulatorThread&) = delete;

  /// The emulator.
  [[nodiscard]] Emulator* operator->() const noexcept { return emulator_.get(); }
  /// The emulator.
  [[nodiscard]] Emulator& operator*() const noexcept { return *emulator_; }

 private:
  boost::asio::io_context context_{1};
  std::shared_ptr<Emulator> emulator_;
  std::thread thread_;
};

}  // namespace ZAK
