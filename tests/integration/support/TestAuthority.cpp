#include "TestAuthority.hpp"

#include <openssl/pem.h>

namespace ZAK::Tests {

void TestCertificate::write(const std::filesystem::path& file) const {
  std::ofstream(file) << own.pem() << intermediate.pem();
  const std::shared_ptr<std::FILE> stream(std::fopen(file.c_str(), "a"), std::fclose);
  PEM_write_PrivateKey(stream.get(), own.key.get(), nullptr, nullptr, 0, nullptr, nullptr);
}

TestCertificate TestAuthority::issue(Flaw flaw) const {
  CertificateTerms leaf{"localhost", "DNS:localhost,DNS:blocked.test,DNS:two.test,IP:127.0.0.1"};
  if (flaw == Flaw::expired) leaf.until = -60;
  if (flaw == Flaw::notYetValid) leaf.from = CertificateTerms::day / 2;
  if (flaw == Flaw::wrongHost) leaf.hosts = "DNS:other.test";
  if (flaw == Flaw::selfSigned) return {Certificate::issue(leaf, nullptr)};
  if (flaw == Flaw::untrustedRoot) {
    const auto stranger = Certificate::issue({"Another root"}, nullptr);
    return {Certificate::issue(leaf, &stranger)};
  }
  const auto intermediate = Certificate::issue({"Test intermediate"}, &root_);
  const auto issued = Certificate::issue(leaf, &intermediate);
  return flaw == Flaw::incompleteChain ? TestCertificate{issued} : TestCertificate{issued, intermediate};
}

const TestAuthority& authority() {
  static const TestAuthority made;
  return made;
}

}  // namespace ZAK::Tests
