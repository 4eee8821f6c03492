#include "keychain/SecretServiceClient.hpp"

#include <chrono>
#include <thread>

namespace ZAK {
namespace {

/// How often an operation starts again when an item goes away under its hands.
constexpr int attempts = 20;

const SecretSchema& schema() {
  static const SecretSchema schema = {"com.zolvi.ZVApiKit.Item",
                                      SECRET_SCHEMA_NONE,
                                      {{"service", SECRET_SCHEMA_ATTRIBUTE_STRING},
                                       {"accessGroup", SECRET_SCHEMA_ATTRIBUTE_STRING},
                                       {"key", SECRET_SCHEMA_ATTRIBUTE_STRING}},
                                      0,
                                      nullptr,
                                      nullptr,
                                      nullptr,
                                      nullptr,
                                      nullptr,
                                      nullptr,
                                      nullptr};
  return schema;
}

struct AttributesDeleter {
  void operator()(GHashTable* table) const noexcept { g_hash_table_unref(table); }
};

std::unique_ptr<GHashTable, AttributesDeleter> attributes(const SecretServiceAddress& address) {
  return std::unique_ptr<GHashTable, AttributesDeleter>(
      secret_attributes_build(&schema(), "service", address.service.c_str(), "accessGroup", address.accessGroup.c_str(),
                              "key", address.key.c_str(), nullptr));
}

KeychainStatus statusOf(const GError& error) {
  if (error.domain == SECRET_ERROR) {
    if (error.code == SECRET_ERROR_IS_LOCKED) return KeychainStatus::interactionNotAllowed;
    if (error.code == SECRET_ERROR_NO_SUCH_OBJECT) return KeychainStatus::noDefaultKeychain;
    return KeychainStatus::internalError;
  }
  if (error.domain == G_DBUS_ERROR) {
    switch (error.code) {
      case G_DBUS_ERROR_UNKNOWN_METHOD:
      case G_DBUS_ERROR_UNKNOWN_OBJECT:
      case G_DBUS_ERROR_UNKNOWN_INTERFACE:
        return KeychainStatus::noDefaultKeychain;
      case G_DBUS_ERROR_ACCESS_DENIED:
        return KeychainStatus::missingEntitlement;
      case G_DBUS_ERROR_AUTH_FAILED:
        return KeychainStatus::authFailed;
      case G_DBUS_ERROR_FAILED:
      case G_DBUS_ERROR_INVALID_ARGS:
      case G_DBUS_ERROR_INVALID_SIGNATURE:
        return KeychainStatus::internalError;
      default:
        return KeychainStatus::notAvailable;
    }
  }
  // An error that the service made up itself.
  if (g_error_matches(&error, G_IO_ERROR, G_IO_ERROR_DBUS_ERROR)) return KeychainStatus::internalError;
  return KeychainStatus::notAvailable;
}

/// Where a function of GLib leaves its error.
class ErrorSlot {
 public:
  ErrorSlot() = default;
  ErrorSlot(const ErrorSlot&) = delete;
  ErrorSlot& operator=(const ErrorSlot&) = delete;
  ~ErrorSlot() { g_clear_error(&error_); }

  operator GError**() noexcept { return &error_; }
  void throwIfSet() const {
    if (error_ != nullptr) throw KeychainError(statusOf(*error_));
  }

 private:
  GError* error_ = nullptr;
};

// `SecretService` is derived from for its prompts, which it leaves to three functions that a derived class may replace,
// and for its connection. Ours tell the call when the user is being asked. They pass no cancellable on: cancelling a
// prompt asks the service to take it away and waits for its word, and a user who is typing the password should not lose
// the window. They always wait, the thread being there for nothing else. And a prompt that ends without a result is an
// error: the callers of the originals (0.20.5) crash or never come back then.

constexpr const char* callProperty = "zvapikit-call";

SecretServiceCall& callOf(SecretService* service) {
  return *static_cast<SecretServiceCall*>(g_object_get_data(G_OBJECT(service), callProperty));
}

GVariant* promptSync(SecretService* service, SecretPrompt* prompt, GCancellable*, const GVariantType* type,
                     GError** error) {
  SecretServiceCall& call = callOf(service);
  call.promptBegins();
  GError* failure = nullptr;
  GVariant* result = secret_prompt_perform_sync(prompt, nullptr, nullptr, type, &failure);
  const bool nothing = result == nullptr || (g_variant_is_container(result) && g_variant_n_children(result) == 0);
  call.promptEnds(!nothing);
  if (failure != nullptr) {
    g_propagate_error(error, failure);
  } else if (result == nullptr) {
    g_set_error_literal(error, SECRET_ERROR, SECRET_ERROR_IS_LOCKED, "dismissed");
  }
  return result;
}

void promptAsync(SecretService* service, SecretPrompt* prompt, const GVariantType* type, GCancellable* cancellable,
                 GAsyncReadyCallback callback, gpointer data) {
  const GObjectPointer<GTask> task(g_task_new(service, nullptr, callback, data));
  GError* error = nullptr;
  GVariant* result = promptSync(service, prompt, cancellable, type, &error);
  if (error != nullptr) {
    g_task_return_error(task.get(), error);
  } else {
    g_task_return_pointer(task.get(), result, [](gpointer value) { g_variant_unref(static_cast<GVariant*>(value)); });
  }
}

GVariant* promptFinish(SecretService*, GAsyncResult* task, GError** error) {
  return static_cast<GVariant*>(g_task_propagate_pointer(G_TASK(task), error));
}

/// The original takes the connection that all of the process share; only during construction can it be told to take the
/// one it was given.
GObject* construct(GType type, guint count, GObjectConstructParam* parameters) {
  GObject* object = G_OBJECT_CLASS(g_type_class_peek(SECRET_TYPE_SERVICE))->constructor(type, count, parameters);
  g_object_set(object, "g-bus-type", G_BUS_TYPE_NONE, "g-flags",
               G_DBUS_PROXY_FLAGS_DO_NOT_LOAD_PROPERTIES | G_DBUS_PROXY_FLAGS_DO_NOT_CONNECT_SIGNALS, nullptr);
  return object;
}

void initializeClass(gpointer pointer, gpointer) {
  G_OBJECT_CLASS(pointer)->constructor = construct;
  auto* type = static_cast<SecretServiceClass*>(pointer);
  type->prompt_sync = promptSync;
  type->prompt_async = promptAsync;
  type->prompt_finish = promptFinish;
}

GType serviceType() {
  static const GType type =
      g_type_register_static_simple(SECRET_TYPE_SERVICE, "ZVApiKitSecretService", sizeof(SecretServiceClass),
                                    initializeClass, sizeof(SecretService), nullptr, GTypeFlags{});
  return type;
}

bool anyLocked(const GList* items) {
  for (; items != nullptr; items = items->next) {
    if (secret_item_get_locked(static_cast<SecretItem*>(items->data))) return true;
  }
  return false;
}

/// Another process may remove an item after it was found; what is left of it looks like a missing keyring.
template <class Operation>
auto lookingAgain(Operation operation) {
  for (int left = attempts; left > 1; --left) {
    try {
      return operation();
    } catch (const KeychainError& error) {
      if (error.status() != KeychainStatus::noDefaultKeychain) throw;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(10));  // this is the call's own thread
  }
  return operation();
}

}  // namespace

SecretServiceClient::ThreadContext::ThreadContext() : context_(g_main_context_new()) {
  g_main_context_push_thread_default(context_);
}

SecretServiceClient::ThreadContext::~ThreadContext() {
  while (g_main_context_iteration(context_, FALSE)) {
  }
  g_main_context_pop_thread_default(context_);
  g_main_context_unref(context_);
}

void SecretServiceClient::Closer::operator()(GDBusConnection* connection) const noexcept {
  g_dbus_connection_close_sync(connection, cancellable, nullptr);
  g_object_unref(connection);
}

SecretServiceClient::SecretServiceClient(SecretServiceCall& call)
    : cancellable_(call.cancellable()), connection_(nullptr, Closer{cancellable_}) {
  ErrorSlot error;
  const std::unique_ptr<char, decltype(&g_free)> address(
      g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SESSION, cancellable_, error), &g_free);
  error.throwIfSet();
  constexpr auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                           G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
  connection_.reset(g_dbus_connection_new_for_address_sync(address.get(), flags, nullptr, cancellable_, error));
  error.throwIfSet();
  service_.reset(static_cast<SecretService*>(g_object_new(serviceType(), "g-connection", connection_.get(), nullptr)));
  g_object_set_data(G_OBJECT(service_.get()), callProperty, &call);
  g_initable_init(G_INITABLE(service_.get()), cancellable_, error);
  error.throwIfSet();
}

/// Of several items with one address (the user may have copied one to another keyring) the one written last counts.
std::optional<std::string> SecretServiceClient::data(const SecretServiceAddress& address) {
  return lookingAgain([&]() -> std::optional<std::string> {
    const Items items = unlockedItems(address);
    SecretItem* newest = nullptr;
    for (const GList* each = items.get(); each != nullptr; each = each->next) {
      auto* item = static_cast<SecretItem*>(each->data);
      if (newest == nullptr || secret_item_get_modified(item) > secret_item_get_modified(newest)) newest = item;
    }
    if (newest == nullptr) return std::nullopt;
    ErrorSlot error;
    secret_item_load_secret_sync(newest, cancellable_, error);
    error.throwIfSet();
    const std::unique_ptr<SecretValue, decltype(&secret_value_unref)> secret(secret_item_get_secret(newest),
                                                                             &secret_value_unref);
    if (!secret) throw KeychainError(KeychainStatus::decode);
    gsize length = 0;
    const gchar* bytes = secret_value_get(secret.get(), &length);
    return std::string(bytes, length);
  });
}

void SecretServiceClient::set(std::string_view data, const SecretServiceAddress& address) {
  const std::unique_ptr<SecretValue, decltype(&secret_value_unref)> secret(
      secret_value_new(data.data(), static_cast<gssize>(data.size()), "application/octet-stream"), &secret_value_unref);
  const std::string label = address.service + ": " + address.key;
  ErrorSlot error;
  const bool stored =
      secret_service_store_sync(service_.get(), &schema(), attributes(address).get(), SECRET_COLLECTION_DEFAULT,
                                label.c_str(), secret.get(), cancellable_, error);
  error.throwIfSet();
  if (!stored) throw KeychainError(KeychainStatus::interactionNotAllowed);
}

void SecretServiceClient::remove(const SecretServiceAddress& address) {
  lookingAgain([&] {
    const Items items = unlockedItems(address);
    for (const GList* each = items.get(); each != nullptr; each = each->next) {
      ErrorSlot error;
      const bool removed = secret_item_delete_sync(static_cast<SecretItem*>(each->data), cancellable_, error);
      error.throwIfSet();
      if (!removed) throw KeychainError(KeychainStatus::userCanceled);
    }
  });
}

SecretServiceClient::Items SecretServiceClient::search(const SecretServiceAddress& address) {
  ErrorSlot error;
  Items items(secret_service_search_sync(service_.get(), &schema(), attributes(address).get(), SECRET_SEARCH_ALL,
                                         cancellable_, error));
  error.throwIfSet();
  return items;
}

/// All items of the address, after asking the user to unlock what is locked.
SecretServiceClient::Items SecretServiceClient::unlockedItems(const SecretServiceAddress& address) {
  Items items = search(address);
  if (!anyLocked(items.get())) return items;
  ErrorSlot error;
  secret_service_unlock_sync(service_.get(), items.get(), cancellable_, nullptr, error);
  error.throwIfSet();
  items = search(address);
  if (anyLocked(items.get())) throw KeychainError(KeychainStatus::interactionNotAllowed);
  return items;
}

}  // namespace ZAK
