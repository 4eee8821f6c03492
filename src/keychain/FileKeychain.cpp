#include "keychain/FileErrors.hpp"
#include "platform/PrivateFiles.hpp"

#include <zvapikit/keychain/FileKeychain.hpp>
#include <zvapikit/platform/Directories.hpp>

#include <openssl/evp.h>

#include <array>
#include <climits>
#include <cstdint>

namespace ZAK {
namespace {

// A file is: magic, SHA-256 of the item's address and data, length of the data (8 bytes, big-endian), data.
constexpr std::string_view magic = "ZAKitem1";
constexpr std::size_t checksumSize = 32;
constexpr std::size_t lengthSize = 8;
constexpr std::size_t headerSize = magic.size() + checksumSize + lengthSize;

std::string lengthText(std::size_t length) {
  std::string text(lengthSize, '\0');
  for (std::size_t i = lengthSize; i-- > 0; length >>= 8) text[i] = static_cast<char>(length & 0xff);
  return text;
}

/// `text` with all but letters, digits, `-`, `_` and inner dots as `%XX`.
std::string escaped(std::string_view text) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string result;
  for (const char c : text) {
    const bool plain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
                       c == '_' || (c == '.' && !result.empty());
    if (plain) {
      result += c;
    } else {
      const auto byte = static_cast<unsigned char>(c);
      result.append({'%', digits[byte >> 4], digits[byte & 15]});
    }
  }
  return result;
}

}  // namespace

std::filesystem::path FileKeychain::defaultDirectory(const std::string& service) {
  const std::filesystem::path base = DirectoryEnvironment::current().dataHome();
  return base.empty() ? base : base / escaped(service);
}

std::optional<std::string> FileKeychain::data(const std::string& key, KeychainOptions) {
  const std::string name = fileName(key);
  std::optional<std::string> file = translatingFileErrors([&] {
    const auto directory = PrivateDirectory::open(directory_);
    return directory ? directory->read(name, headerSize + maximumSize) : std::nullopt;
  });
  if (!file) return std::nullopt;
  const std::string_view content = *file;
  if (content.size() < headerSize) throw KeychainError(KeychainStatus::decode);
  const std::string_view data = content.substr(headerSize);
  if (content.substr(0, headerSize) != std::string(magic) + checksum(data, key) + lengthText(data.size())) {
    throw KeychainError(KeychainStatus::decode);
  }
  return std::string(data);
}

void FileKeychain::set(std::string_view data, const std::string& key, KeychainOptions) {
  if (data.size() > maximumSize) throw KeychainError(KeychainStatus::param);
  const std::string name = fileName(key);
  std::string content(magic);
  content.append(checksum(data, key)).append(lengthText(data.size())).append(data);
  translatingFileErrors([&] { PrivateDirectory::create(directory_).replace(name, content); });
}

void FileKeychain::remove(const std::string& key, KeychainOptions) {
  const std::string name = fileName(key);
  translatingFileErrors([&] {
    if (const auto directory = PrivateDirectory::open(directory_)) directory->remove(name);
  });
}

/// The separator and the ending are characters that escaping leaves to them, so two items never share a name.
std::string FileKeychain::fileName(const std::string& key) const {
  std::string name = escaped(settings().accessGroup) + "+" + escaped(key) + ".item";
  if (key.empty() || name.size() > NAME_MAX) throw KeychainError(KeychainStatus::param);
  return name;
}

/// Covers the address as well: a file renamed to another item's is not that item.
std::string FileKeychain::checksum(std::string_view data, const std::string& key) const {
  std::string text;
  for (const std::string_view part :
       {std::string_view(settings().service), std::string_view(settings().accessGroup), std::string_view(key), data}) {
    text.append(lengthText(part.size())).append(part);
  }
  std::string digest(checksumSize, '\0');
  if (EVP_Digest(text.data(), text.size(), reinterpret_cast<unsigned char*>(digest.data()), nullptr, EVP_sha256(),
                 nullptr) != 1) {
    throw KeychainError(KeychainStatus::internalError);
  }
  return digest;
}

}  // namespace ZAK
