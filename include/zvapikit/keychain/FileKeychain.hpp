#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/keychain/Keychain.hpp>

#include <filesystem>

namespace ZAK {

/// Keeps each item in a file of its own that only the user can read (mode 0600, in a directory of mode 0700). The
/// content is not encrypted.
///
/// A write is safe on disk when it returns, and is whole or not at all: several processes may use one directory. A file
/// that is damaged, cut short or another item's fails with `KeychainStatus::decode`; one that is a link, someone
/// else's or open to others fails with `KeychainStatus::io`, as do errors of the file system. A write mends either.
///
/// Thread safety: callable from any thread.
class ZVAPIKIT_API FileKeychain final : public Keychain {
 public:
  /// Longest data of an item, in bytes; longer ones fail with `KeychainStatus::param`, as do empty keys and those whose
  /// file name would be too long.
  static constexpr std::size_t maximumSize = std::size_t{1} << 20;

  /// `directory` is created by the first write.
  FileKeychain(KeychainSettings settings, std::filesystem::path directory)
      : Keychain(std::move(settings)), directory_(std::move(directory)) {}

  /// The directory that the kit uses for a service: `$XDG_DATA_HOME/SERVICE`, else `~/.local/share/SERVICE`.
  static std::filesystem::path defaultDirectory(const std::string& service);

  [[nodiscard]] std::optional<std::string> data(const std::string& key, KeychainOptions options = {}) override;
  void set(std::string_view data, const std::string& key, KeychainOptions options = {}) override;
  void remove(const std::string& key, KeychainOptions options = {}) override;

 private:
  [[nodiscard]] std::string fileName(const std::string& key) const;
  [[nodiscard]] std::string checksum(std::string_view data, const std::string& key) const;

  std::filesystem::path directory_;
};

}  // namespace ZAK
