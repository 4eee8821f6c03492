// The stored token: bytes that are not the whole of what was written never pass for it.
#include "auth/KeychainTokenStorage.hpp"
#include "fuzz/Fuzzing.hpp"

#include <zvapikit/keychain/InMemoryKeychain.hpp>

using namespace ZAK;
using Fuzzing::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes = Fuzzing::text(data, size);
  const std::string key = "zak_token_sandbox_store_key";
  const auto keychain = std::make_shared<InMemoryKeychain>();
  KeychainTokenStorage storage(Configuration::Environment::sandbox, keychain, nullptr);
  keychain->set(bytes, key);
  const std::optional<TokenDto> token = storage.get();
  if (!token) return 0;
  storage.set(token);
  require(storage.get() == token, "a token is stored and read again", bytes);

  const std::size_t end = bytes.find_last_not_of(" \t\r\n");
  for (const std::size_t cut : {std::size_t{0}, end / 2, end - 1, end}) {
    keychain->set(bytes.substr(0, cut), key);
    require(!storage.get(), "what is cut short is no token", bytes.substr(0, cut));
  }
  return 0;
}
