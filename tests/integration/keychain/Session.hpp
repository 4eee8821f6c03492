#pragma once

#include <filesystem>
#include <gio/gio.h>
#include <memory>
#include <set>
#include <string>

namespace ZAK::Tests {

struct Unref {
  void operator()(gpointer object) const { g_object_unref(object); }
};
template <class T>
using Reference = std::unique_ptr<T, Unref>;

/// A GNOME Keyring on the session bus, as long as the object lives. Its keyrings stay in the directory `home`.
class KeyringDaemon {
 public:
  explicit KeyringDaemon(const std::filesystem::path& home);
  KeyringDaemon(const KeyringDaemon&) = delete;
  KeyringDaemon& operator=(const KeyringDaemon&) = delete;
  ~KeyringDaemon();

  void lock();

 private:
  Reference<GDBusConnection> bus_;
  Reference<GSubprocess> process_;
};

/// A Secret Service that leaves a caller waiting. It owns the name, in this process.
class UnhelpfulService {
 public:
  enum class Behaviour {
    silent,  ///< answers nothing
    asks,    ///< holds one locked item and asks the user to unlock it, who answers with `endPrompt`
  };

  explicit UnhelpfulService(Behaviour behaviour);
  UnhelpfulService(const UnhelpfulService&) = delete;
  UnhelpfulService& operator=(const UnhelpfulService&) = delete;
  ~UnhelpfulService();

  void endPrompt(bool dismissed = false);
  /// How often a method was called.
  [[nodiscard]] std::size_t calls(const std::string& method) const;

 private:
  static GDBusMessage* filter(GDBusConnection* bus, GDBusMessage* message, gboolean incoming, gpointer self);
  void handle(GDBusMessage* message);  ///< on GLib's thread
  [[nodiscard]] GVariant* answer(const std::string& method, GDBusMessage* message) const;

  Behaviour behaviour_;
  Reference<GDBusConnection> bus_;
  guint filter_ = 0;
  bool unlocked_ = false;
  std::multiset<std::string> calls_;
};

}  // namespace ZAK::Tests
