#pragma once

#include <openssl/ssl.h>

#include <filesystem>
#include <memory>
#include <string>

namespace ZAK::test {

/// A server's key, its certificate, and the certificate that it sends along, if any.
struct TestCertificate {
  std::shared_ptr<EVP_PKEY> key;
  std::shared_ptr<X509> certificate;
  std::shared_ptr<X509> intermediate;

  /// The certificates and the key as one PEM file.
  void write(const std::filesystem::path& file) const;
};

/// A certificate authority made on the spot. Its certificates are for `localhost`, `blocked.test`, `two.test` and
/// 127.0.0.1.
class TestAuthority {
 public:
  enum class Flaw { none, expired, notYetValid, wrongHost, selfSigned, untrustedRoot, incompleteChain };

  TestAuthority();
  ~TestAuthority();
  TestAuthority(const TestAuthority&) = delete;
  TestAuthority& operator=(const TestAuthority&) = delete;

  [[nodiscard]] TestCertificate issue(Flaw flaw = Flaw::none) const;
  /// The authority's own certificate in PEM form; there as long as the object.
  [[nodiscard]] const std::filesystem::path& file() const noexcept { return file_; }

 private:
  TestCertificate root_;
  std::filesystem::path file_;
};

}  // namespace ZAK::test
