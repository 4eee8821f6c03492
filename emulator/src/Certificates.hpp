#pragma once

#include <zvapikit/emulator/EmulatorOptions.hpp>

#include <boost/asio/ssl/context.hpp>
#include <openssl/x509.h>

#include <memory>
#include <string>

namespace ZAK {

/// What a certificate says of its bearer.
struct CertificateTerms {
  static constexpr long day = 24 * 60 * 60;

  std::string name;
  /// Alternative names in OpenSSL's form, such as `DNS:localhost,IP:127.0.0.1`; empty for an authority.
  std::string hosts{};
  long from = -30 * day;  ///< in seconds from now
  long until = 30 * day;
};

/// A certificate with its key.
struct Certificate {
  std::shared_ptr<EVP_PKEY> key;
  std::shared_ptr<X509> x509;

  /// Made afresh, and signed by `issuer`, or by itself when that is null.
  /// \throws std::runtime_error when OpenSSL cannot make it.
  static Certificate issue(const CertificateTerms& terms, const Certificate* issuer);
  /// The certificate alone, PEM.
  [[nodiscard]] std::string pem() const;
};

/// A server's identity with the authority that vouches for it, both made afresh.
struct ServerIdentity {
  explicit ServerIdentity(EmulatorOptions::Certificate kind);

  std::string authority;  ///< the authority's certificate, PEM
  boost::asio::ssl::context context;
};

}  // namespace ZAK
