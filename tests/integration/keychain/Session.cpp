#include "Session.hpp"

#include <chrono>
#include <mutex>
#include <stdexcept>
#include <thread>

namespace ZAK::Tests {
namespace {

constexpr const char* name = "org.freedesktop.secrets";
constexpr const char* itemPath = "/org/freedesktop/secrets/collection/c/1";
constexpr const char* promptPath = "/org/freedesktop/secrets/prompt/p1";

/// Guards all services. A static one, so that a service's making, use and end are ordered by a lock that
/// ThreadSanitizer knows: GLib's own are out of its sight.
std::mutex servicesMutex;

struct FreeVariant {
  void operator()(GVariant* variant) const { g_variant_unref(variant); }
};
using Variant = std::unique_ptr<GVariant, FreeVariant>;

void check(GError* error) {
  if (error == nullptr) return;
  const std::string message = error->message;
  g_error_free(error);
  throw std::runtime_error(message);
}

Variant call(GDBusConnection* bus, const char* service, const char* path, const char* interface, const char* method,
             GVariant* arguments) {
  GError* error = nullptr;
  Variant reply(g_dbus_connection_call_sync(bus, service, path, interface, method, arguments, nullptr,
                                            G_DBUS_CALL_FLAGS_NONE, -1, nullptr, &error));
  check(error);
  return reply;
}

Variant callBus(GDBusConnection* bus, const char* method, GVariant* arguments) {
  return call(bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method, arguments);
}

bool isOwned(GDBusConnection* bus) {
  gboolean is = FALSE;
  g_variant_get(callBus(bus, "NameHasOwner", g_variant_new("(s)", name)).get(), "(b)", &is);
  return is != FALSE;
}

void waitUntil(GDBusConnection* bus, bool owned) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  while (isOwned(bus) != owned) {
    if (std::chrono::steady_clock::now() > end) throw std::runtime_error("the keyring does not come or go");
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
}

/// A connection of the test's own.
Reference<GDBusConnection> connectToSession() {
  GError* error = nullptr;
  char* address = g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SESSION, nullptr, &error);
  check(error);
  Reference<GDBusConnection> bus(g_dbus_connection_new_for_address_sync(
      address,
      static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                        G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
      nullptr, nullptr, &error));
  g_free(address);
  check(error);
  return bus;
}

}  // namespace

KeyringDaemon::KeyringDaemon(const std::filesystem::path& home) : bus_(connectToSession()) {
  const Reference<GSubprocessLauncher> launcher(g_subprocess_launcher_new(static_cast<GSubprocessFlags>(
      G_SUBPROCESS_FLAGS_STDIN_PIPE | G_SUBPROCESS_FLAGS_STDOUT_SILENCE | G_SUBPROCESS_FLAGS_STDERR_SILENCE)));
  g_subprocess_launcher_setenv(launcher.get(), "XDG_DATA_HOME", home.c_str(), TRUE);
  GError* error = nullptr;
  process_.reset(g_subprocess_launcher_spawn(launcher.get(), &error, "gnome-keyring-daemon", "--foreground",
                                             "--components=secrets", "--unlock", nullptr));
  check(error);
  GOutputStream* input = g_subprocess_get_stdin_pipe(process_.get());
  g_output_stream_write_all(input, "password", 8, nullptr, nullptr, nullptr);
  g_output_stream_close(input, nullptr, nullptr);
  waitUntil(bus_.get(), true);
}

KeyringDaemon::~KeyringDaemon() {
  g_subprocess_send_signal(process_.get(), SIGTERM);
  g_subprocess_wait(process_.get(), nullptr, nullptr);
  waitUntil(bus_.get(), false);
  g_dbus_connection_close_sync(bus_.get(), nullptr, nullptr);
}

void KeyringDaemon::lock() {
  const char* collections[] = {"/org/freedesktop/secrets/collection/login"};
  call(bus_.get(), name, "/org/freedesktop/secrets", "org.freedesktop.Secret.Service", "Lock",
       g_variant_new("(@ao)", g_variant_new_objv(collections, 1)));
}

UnhelpfulService::UnhelpfulService(Behaviour behaviour) : behaviour_(behaviour), bus_(connectToSession()) {
  std::unique_lock lock(servicesMutex);
  filter_ = g_dbus_connection_add_filter(bus_.get(), &UnhelpfulService::filter, this, nullptr);
  lock.unlock();
  callBus(bus_.get(), "RequestName", g_variant_new("(su)", name, 0U));
}

UnhelpfulService::~UnhelpfulService() {
  g_dbus_connection_remove_filter(bus_.get(), filter_);
  g_dbus_connection_close_sync(bus_.get(), nullptr, nullptr);
  const std::lock_guard lock(servicesMutex);
}

void UnhelpfulService::endPrompt(bool dismissed) {
  {
    const std::lock_guard lock(servicesMutex);
    unlocked_ = !dismissed;
  }
  const char* items[] = {itemPath};
  GError* error = nullptr;
  g_dbus_connection_emit_signal(
      bus_.get(), nullptr, promptPath, "org.freedesktop.Secret.Prompt", "Completed",
      g_variant_new("(bv)", static_cast<gboolean>(dismissed), g_variant_new_objv(items, dismissed ? 0 : 1)), &error);
  check(error);
}

std::size_t UnhelpfulService::calls(const std::string& method) const {
  const std::lock_guard lock(servicesMutex);
  return calls_.count(method);
}

GDBusMessage* UnhelpfulService::filter(GDBusConnection*, GDBusMessage* message, gboolean incoming, gpointer self) {
  if (!incoming || g_dbus_message_get_message_type(message) != G_DBUS_MESSAGE_TYPE_METHOD_CALL) return message;
  static_cast<UnhelpfulService*>(self)->handle(message);
  g_object_unref(message);
  return nullptr;
}

void UnhelpfulService::handle(GDBusMessage* message) {
  const std::lock_guard lock(servicesMutex);
  const std::string method = g_dbus_message_get_member(message);
  calls_.insert(method);
  if (behaviour_ == Behaviour::silent) return;
  GVariant* body = answer(method, message);
  const char* failure =
      method == "OpenSession" ? "org.freedesktop.DBus.Error.NotSupported" : "org.freedesktop.Secret.Error.IsLocked";
  const Reference<GDBusMessage> reply(body != nullptr
                                          ? g_dbus_message_new_method_reply(message)
                                          : g_dbus_message_new_method_error_literal(message, failure, "no"));
  if (body != nullptr) g_dbus_message_set_body(reply.get(), body);
  g_dbus_connection_send_message(bus_.get(), reply.get(), G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr, nullptr);
}

GVariant* UnhelpfulService::answer(const std::string& method, GDBusMessage* message) const {
  const char* items[] = {itemPath};
  const auto paths = [&](bool any) { return g_variant_new_objv(items, any ? 1 : 0); };
  if (method == "SearchItems") return g_variant_new("(@ao@ao)", paths(unlocked_), paths(!unlocked_));
  if (method == "Unlock") return g_variant_new("(@aoo)", paths(unlocked_), unlocked_ ? "/" : promptPath);
  if (method == "Prompt") return g_variant_new("()");
  if (method == "CreateItem" && unlocked_) return g_variant_new("(oo)", itemPath, "/");
  if (method == "Delete" && unlocked_) return g_variant_new("(o)", "/");
  if (method == "GetAll") {
    return g_variant_new_parsed("({'Locked': <%b>, 'Label': <'item'>, 'Modified': <uint64 1>},)",
                                static_cast<gboolean>(!unlocked_));
  }
  if (method == "OpenSession") {
    const char* algorithm = nullptr;
    g_variant_get_child(g_dbus_message_get_body(message), 0, "&s", &algorithm);
    if (std::string(algorithm) == "plain") return g_variant_new("(vo)", g_variant_new_string(""), "/session/1");
  }
  return nullptr;
}

}  // namespace ZAK::Tests
