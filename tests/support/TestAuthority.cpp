#include "support/TestAuthority.hpp"

#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <atomic>
#include <cstdio>
#include <stdexcept>
#include <unistd.h>

namespace ZAK::test {
namespace {

constexpr long day = 24 * 60 * 60;

void require(bool done) {
  if (!done) throw std::runtime_error("OpenSSL could not make a test certificate");
}

struct Description {
  std::string name;
  /// Absent for an authority.
  std::string hosts;
  long notBefore = -day;
  long notAfter = day;
};

void extend(X509* certificate, int nid, const std::string& value) {
  X509_EXTENSION* extension = X509V3_EXT_conf_nid(nullptr, nullptr, nid, value.c_str());
  require(extension != nullptr && X509_add_ext(certificate, extension, -1) == 1);
  X509_EXTENSION_free(extension);
}

/// Signed by `issuer`, or by itself when that is null.
TestCertificate make(const Description& description, const TestCertificate* issuer) {
  static std::atomic<long> serial{1};
  TestCertificate made{{EVP_EC_gen("P-256"), EVP_PKEY_free}, {X509_new(), X509_free}, nullptr};
  X509* certificate = made.certificate.get();
  require(made.key != nullptr && certificate != nullptr && X509_set_version(certificate, 2) == 1);
  ASN1_INTEGER_set(X509_get_serialNumber(certificate), serial++);
  X509_gmtime_adj(X509_getm_notBefore(certificate), description.notBefore);
  X509_gmtime_adj(X509_getm_notAfter(certificate), description.notAfter);
  X509_NAME* subject = X509_get_subject_name(certificate);
  const auto* name = reinterpret_cast<const unsigned char*>(description.name.c_str());
  require(X509_NAME_add_entry_by_txt(subject, "CN", MBSTRING_UTF8, name, -1, -1, 0) == 1);
  X509_set_issuer_name(certificate, issuer ? X509_get_subject_name(issuer->certificate.get()) : subject);
  X509_set_pubkey(certificate, made.key.get());
  if (description.hosts.empty()) {
    extend(certificate, NID_basic_constraints, "critical,CA:TRUE");
    extend(certificate, NID_key_usage, "critical,keyCertSign,cRLSign");
  } else {
    extend(certificate, NID_subject_alt_name, description.hosts);
  }
  require(X509_sign(certificate, issuer ? issuer->key.get() : made.key.get(), EVP_sha256()) != 0);
  return made;
}

std::shared_ptr<std::FILE> openForWriting(const std::filesystem::path& file) {
  std::shared_ptr<std::FILE> stream(std::fopen(file.c_str(), "w"), [](std::FILE* open) {
    if (open != nullptr) std::fclose(open);
  });
  require(stream != nullptr);
  return stream;
}

}  // namespace

void TestCertificate::write(const std::filesystem::path& file) const {
  const auto stream = openForWriting(file);
  require(PEM_write_X509(stream.get(), certificate.get()) == 1);
  if (intermediate) require(PEM_write_X509(stream.get(), intermediate.get()) == 1);
  require(PEM_write_PrivateKey(stream.get(), key.get(), nullptr, nullptr, 0, nullptr, nullptr) == 1);
}

TestAuthority::TestAuthority() : root_(make({"Test root", ""}, nullptr)) {
  static std::atomic<int> count{0};
  file_ = std::filesystem::temp_directory_path() /
          ("zvapikit-ca-" + std::to_string(::getpid()) + '-' + std::to_string(count++) + ".pem");
  require(PEM_write_X509(openForWriting(file_).get(), root_.certificate.get()) == 1);
}

TestAuthority::~TestAuthority() {
  std::error_code ignored;
  std::filesystem::remove(file_, ignored);
}

TestCertificate TestAuthority::issue(Flaw flaw) const {
  Description leaf{"localhost", "DNS:localhost,DNS:blocked.test,DNS:two.test,IP:127.0.0.1"};
  if (flaw == Flaw::expired) leaf.notAfter = -60;
  if (flaw == Flaw::notYetValid) leaf.notBefore = day / 2;
  if (flaw == Flaw::wrongHost) leaf.hosts = "DNS:other.test";
  if (flaw == Flaw::selfSigned) return make(leaf, nullptr);
  if (flaw == Flaw::untrustedRoot) {
    const auto stranger = make({"Another root", ""}, nullptr);
    return make(leaf, &stranger);
  }
  const auto intermediate = make({"Test intermediate", ""}, &root_);
  auto issued = make(leaf, &intermediate);
  if (flaw != Flaw::incompleteChain) issued.intermediate = intermediate.certificate;
  return issued;
}

}  // namespace ZAK::test
