// The stored token: bytes that are not the whole of what was written never pass for it.
#include "auth/KeychainTokenStorage.hpp"
#include "fuzz/Fuzzing.hpp"
#include "support/TemporaryDirectory.hpp"

#include <zvapikit/keychain/FileKeychain.hpp>
#include <zvapikit/keychain/InMemoryKeychain.hpp>

using namespace ZAK;
using Fuzzing::require;

namespace {

const std::string key = "zak_token_sandbox_store_key";
const KeychainSettings settings{.service = "fuzzed", .accessGroup = "group"};

/// The bytes as the item of a keychain.
void checkItem(std::string_view bytes) {
  const auto keychain = std::make_shared<InMemoryKeychain>();
  KeychainTokenStorage storage(Configuration::Environment::sandbox, keychain, nullptr);
  keychain->set(bytes, key);
  const std::optional<TokenDto> token = storage.get();
  if (!token) return;
  storage.set(token);
  require(storage.get() == token, "a token is stored and read again", bytes);

  const std::size_t end = bytes.find_last_not_of(" \t\r\n");
  for (const std::size_t cut : {std::size_t{0}, end / 2, end - 1, end}) {
    keychain->set(bytes.substr(0, cut), key);
    require(!storage.get(), "what is cut short is no token", bytes.substr(0, cut));
  }
}

/// The bytes as a whole file of the keychain's.
void checkFile(std::string_view bytes) {
  static const Testing::TemporaryDirectory directory;
  static FileKeychain keychain(settings, directory.path() / "items");
  static const std::filesystem::path file = [] {
    keychain.set("", key);
    return std::filesystem::directory_iterator(directory.path() / "items")->path();
  }();
  std::ofstream(file, std::ios::binary) << bytes;
  std::optional<std::string> read;
  try {
    read = keychain.data(key);
  } catch (const KeychainError& error) {
    require(error.status() == KeychainStatus::decode, "a file that is not whole fails to decode");
    return;
  }
  require(read.has_value(), "a file is an item or an error");
  keychain.set(*read, key);
  require(Testing::contentOf(file) == bytes, "only the keychain's own bytes are an item", *read);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes = Fuzzing::text(data, size);
  checkItem(bytes);
  checkFile(bytes);
  return 0;
}
