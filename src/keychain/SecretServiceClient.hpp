#pragma once

#include "keychain/SecretServiceCall.hpp"

#include <zvapikit/keychain/KeychainError.hpp>

#include <libsecret/secret.h>

#include <memory>
#include <string_view>

namespace ZAK {

struct GObjectDeleter {
  void operator()(gpointer object) const noexcept { g_object_unref(object); }
};
template <class T>
using GObjectPointer = std::unique_ptr<T, GObjectDeleter>;

/// What an item is found by.
struct SecretServiceAddress {
  std::string service;
  std::string accessGroup;
  std::string key;
};

/// A connection to the session bus for one call, with what the call does over it. All of it is the thread's own, so
/// that nothing depends on a host's GLib main loop, and nothing of a host is closed or ended with it.
///
/// Operations throw `KeychainError`, and wait until the call is cancelled if they have to.
class SecretServiceClient {
 public:
  explicit SecretServiceClient(SecretServiceCall& call);

  [[nodiscard]] std::optional<std::string> data(const SecretServiceAddress& address);
  void set(std::string_view data, const SecretServiceAddress& address);
  void remove(const SecretServiceAddress& address);

 private:
  /// Where this thread's signals and answers arrive while the object lives.
  class ThreadContext {
   public:
    ThreadContext();
    ThreadContext(const ThreadContext&) = delete;
    ThreadContext& operator=(const ThreadContext&) = delete;
    ~ThreadContext();

   private:
    GMainContext* context_;
  };
  struct Closer {
    GCancellable* cancellable;
    void operator()(GDBusConnection* connection) const noexcept;
  };
  struct ItemsDeleter {
    void operator()(GList* items) const noexcept { g_list_free_full(items, g_object_unref); }
  };
  using Items = std::unique_ptr<GList, ItemsDeleter>;

  [[nodiscard]] Items search(const SecretServiceAddress& address);
  [[nodiscard]] Items unlockedItems(const SecretServiceAddress& address);

  GCancellable* cancellable_;
  ThreadContext context_;
  std::unique_ptr<GDBusConnection, Closer> connection_;
  GObjectPointer<SecretService> service_;
};

}  // namespace ZAK
