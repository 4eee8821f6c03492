#include "Certificates.hpp"

#include "Hosts.hpp"

#include <openssl/bio.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509v3.h>

#include <memory>
#include <stdexcept>

namespace ZAK {

namespace {

template <auto release>
struct Release {
  template <class T>
  void operator()(T* object) const noexcept {
    release(object);
  }
};

using Key = std::unique_ptr<EVP_PKEY, Release<EVP_PKEY_free>>;
using Certificate = std::unique_ptr<X509, Release<X509_free>>;
using Extension = std::unique_ptr<X509_EXTENSION, Release<X509_EXTENSION_free>>;
using Buffer = std::unique_ptr<BIO, Release<BIO_free_all>>;

constexpr long day = 24 * 60 * 60;

void check(bool fine) {
  if (!fine) throw std::runtime_error("OpenSSL cannot make a certificate");
}

void addExtension(X509* certificate, X509* issuer, int nid, const std::string& value) {
  X509V3_CTX context{};
  X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
  const Extension extension(X509V3_EXT_conf_nid(nullptr, &context, nid, value.c_str()));
  check(extension && X509_add_ext(certificate, extension.get(), -1) == 1);
}

/// A certificate that lacks its extensions and its signature.
Certificate makeCertificate(const std::string& name, EVP_PKEY* key, X509* issuer, long from, long until) {
  Certificate certificate(X509_new());
  check(certificate != nullptr);
  X509* const raw = certificate.get();
  X509_set_version(raw, X509_VERSION_3);
  unsigned char serial[8] = {};
  check(RAND_bytes(serial, sizeof serial) == 1);
  std::uint64_t number = 0;
  for (const unsigned char byte : serial) number = number << 8 | byte;
  ASN1_INTEGER_set_uint64(X509_get_serialNumber(raw), number >> 1);
  X509_gmtime_adj(X509_getm_notBefore(raw), from);
  X509_gmtime_adj(X509_getm_notAfter(raw), until);
  X509_NAME* const subject = X509_get_subject_name(raw);
  const auto* const text = reinterpret_cast<const unsigned char*>(name.c_str());
  check(X509_NAME_add_entry_by_txt(subject, "CN", MBSTRING_UTF8, text, -1, -1, 0) == 1);
  X509_set_issuer_name(raw, issuer ? X509_get_subject_name(issuer) : subject);
  check(X509_set_pubkey(raw, key) == 1);
  return certificate;
}

void sign(X509* certificate, EVP_PKEY* key) { check(X509_sign(certificate, key, EVP_sha256()) > 0); }

std::string subjectNames(EmulatorOptions::Certificate kind) {
  if (kind == EmulatorOptions::Certificate::wrongHost) return "DNS:elsewhere.example";
  std::string names = "DNS:localhost,IP:127.0.0.1";
  for (const std::string& host : hosts()) names += ",DNS:" + host;
  return names;
}

std::string pem(X509* certificate) {
  const Buffer buffer(BIO_new(BIO_s_mem()));
  check(buffer && PEM_write_bio_X509(buffer.get(), certificate) == 1);
  char* text = nullptr;
  const long size = BIO_get_mem_data(buffer.get(), &text);
  return std::string(text, static_cast<std::size_t>(size));
}

}  // namespace

ServerIdentity::ServerIdentity(EmulatorOptions::Certificate kind) : context(boost::asio::ssl::context::tls_server) {
  const bool expired = kind == EmulatorOptions::Certificate::expired;
  const Key authorityKey(EVP_EC_gen("P-256"));
  const Key key(EVP_EC_gen("P-256"));
  check(authorityKey && key);

  const Certificate root =
      makeCertificate("ZVApiKit emulator authority", authorityKey.get(), nullptr, -30 * day, 30 * day);
  addExtension(root.get(), root.get(), NID_basic_constraints, "critical,CA:TRUE,pathlen:0");
  addExtension(root.get(), root.get(), NID_key_usage, "critical,keyCertSign,cRLSign");
  addExtension(root.get(), root.get(), NID_subject_key_identifier, "hash");
  sign(root.get(), authorityKey.get());

  const Certificate leaf =
      makeCertificate("ZVApiKit emulator", key.get(), root.get(), -20 * day, expired ? -day : 20 * day);
  addExtension(leaf.get(), root.get(), NID_basic_constraints, "critical,CA:FALSE");
  addExtension(leaf.get(), root.get(), NID_key_usage, "critical,digitalSignature");
  addExtension(leaf.get(), root.get(), NID_ext_key_usage, "serverAuth");
  addExtension(leaf.get(), root.get(), NID_authority_key_identifier, "keyid:always");
  addExtension(leaf.get(), root.get(), NID_subject_alt_name, subjectNames(kind));
  sign(leaf.get(), authorityKey.get());

  authority = pem(root.get());
  SSL_CTX* const handle = context.native_handle();
  check(SSL_CTX_set_min_proto_version(handle, TLS1_2_VERSION) == 1);
  check(SSL_CTX_use_certificate(handle, leaf.get()) == 1 && SSL_CTX_use_PrivateKey(handle, key.get()) == 1);
}

}  // namespace ZAK
