#pragma once

#include "Certificates.hpp"
#include "support/TemporaryDirectory.hpp"

#include <filesystem>

namespace ZAK::Tests {

/// A server's certificate, and the one that it sends along, if any.
struct TestCertificate {
  Certificate own;
  Certificate intermediate{};

  /// The certificates and the key as one PEM file.
  void write(const std::filesystem::path& file) const;
};

/// A certificate authority made on the spot. Its certificates are for `localhost`, `blocked.test`, `two.test` and
/// 127.0.0.1.
class TestAuthority {
 public:
  enum class Flaw { none, expired, notYetValid, wrongHost, selfSigned, untrustedRoot, incompleteChain };

  [[nodiscard]] TestCertificate issue(Flaw flaw = Flaw::none) const;
  /// The authority's own certificate in PEM form; there as long as the object.
  [[nodiscard]] const std::filesystem::path& file() const noexcept { return file_; }

 private:
  Certificate root_ = Certificate::issue({"Test root"}, nullptr);
  TemporaryDirectory directory_;
  std::filesystem::path file_ = directory_.write("authority.pem", root_.pem());
};

/// The authority that the tests' clients trust.
[[nodiscard]] const TestAuthority& authority();

}  // namespace ZAK::Tests
