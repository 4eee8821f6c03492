#include "Certificates.hpp"

#include "Hosts.hpp"

#include <openssl/bio.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509v3.h>

#include <stdexcept>

namespace ZAK {

namespace {

constexpr long day = CertificateTerms::day;

void check(bool fine) {
  if (!fine) throw std::runtime_error("OpenSSL cannot make a certificate");
}

void addExtension(X509* certificate, X509* issuer, int nid, const std::string& value) {
  X509V3_CTX context{};
  X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
  const std::unique_ptr<X509_EXTENSION, decltype(&X509_EXTENSION_free)> extension(
      X509V3_EXT_conf_nid(nullptr, &context, nid, value.c_str()), X509_EXTENSION_free);
  check(extension && X509_add_ext(certificate, extension.get(), -1) == 1);
}

void addExtensions(X509* certificate, X509* issuer, const std::string& hosts) {
  addExtension(certificate, issuer, NID_basic_constraints, hosts.empty() ? "critical,CA:TRUE" : "critical,CA:FALSE");
  addExtension(certificate, issuer, NID_key_usage,
               hosts.empty() ? "critical,keyCertSign,cRLSign" : "critical,digitalSignature");
  addExtension(certificate, issuer, NID_subject_key_identifier, "hash");
  if (issuer != certificate) addExtension(certificate, issuer, NID_authority_key_identifier, "keyid:always");
  if (hosts.empty()) return;
  addExtension(certificate, issuer, NID_ext_key_usage, "serverAuth");
  addExtension(certificate, issuer, NID_subject_alt_name, hosts);
}

std::string subjectNames(EmulatorOptions::Certificate kind) {
  if (kind == EmulatorOptions::Certificate::wrongHost) return "DNS:elsewhere.example";
  std::string names = "DNS:localhost,IP:127.0.0.1";
  for (const std::string& host : hosts()) names += ",DNS:" + host;
  return names;
}

}  // namespace

Certificate Certificate::issue(const CertificateTerms& terms, const Certificate* issuer) {
  Certificate made{{EVP_EC_gen("P-256"), EVP_PKEY_free}, {X509_new(), X509_free}};
  check(made.key && made.x509);
  X509* const raw = made.x509.get();
  X509* const signer = issuer ? issuer->x509.get() : raw;
  X509_set_version(raw, X509_VERSION_3);
  unsigned char serial[8] = {};
  check(RAND_bytes(serial, sizeof serial) == 1);
  std::uint64_t number = 0;
  for (const unsigned char byte : serial) number = number << 8 | byte;
  ASN1_INTEGER_set_uint64(X509_get_serialNumber(raw), number >> 1);
  X509_gmtime_adj(X509_getm_notBefore(raw), terms.from);
  X509_gmtime_adj(X509_getm_notAfter(raw), terms.until);
  X509_NAME* const subject = X509_get_subject_name(raw);
  const auto* const text = reinterpret_cast<const unsigned char*>(terms.name.c_str());
  check(X509_NAME_add_entry_by_txt(subject, "CN", MBSTRING_UTF8, text, -1, -1, 0) == 1);
  X509_set_issuer_name(raw, X509_get_subject_name(signer));
  check(X509_set_pubkey(raw, made.key.get()) == 1);
  addExtensions(raw, signer, terms.hosts);
  check(X509_sign(raw, issuer ? issuer->key.get() : made.key.get(), EVP_sha256()) > 0);
  return made;
}

std::string Certificate::pem() const {
  const std::unique_ptr<BIO, decltype(&BIO_free_all)> buffer(BIO_new(BIO_s_mem()), BIO_free_all);
  check(buffer && PEM_write_bio_X509(buffer.get(), x509.get()) == 1);
  char* text = nullptr;
  const long size = BIO_get_mem_data(buffer.get(), &text);
  return std::string(text, static_cast<std::size_t>(size));
}

ServerIdentity::ServerIdentity(EmulatorOptions::Certificate kind) : context(boost::asio::ssl::context::tls_server) {
  const bool expired = kind == EmulatorOptions::Certificate::expired;
  const Certificate root = Certificate::issue({"ZVApiKit emulator authority"}, nullptr);
  const Certificate leaf =
      Certificate::issue({"ZVApiKit emulator", subjectNames(kind), -20 * day, expired ? -day : 20 * day}, &root);
  authority = root.pem();
  SSL_CTX* const handle = context.native_handle();
  check(SSL_CTX_set_min_proto_version(handle, TLS1_2_VERSION) == 1);
  check(SSL_CTX_use_certificate(handle, leaf.x509.get()) == 1 && SSL_CTX_use_PrivateKey(handle, leaf.key.get()) == 1);
}

}  // namespace ZAK
