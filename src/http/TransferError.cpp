#include "http/TransferError.hpp"

#include <openssl/x509_vfy.h>

#include <cerrno>
#include <string>
#include <utility>

namespace ZAK {
namespace {

using Kind = HTTPError::Kind;
using Verdict = std::pair<Kind, std::string>;

/// No connection, for that reason, to what libcurl was to connect to.
Verdict connectVerdict(const std::string& reason, const TransferFailure& failure) {
  return {Kind::cannotConnect, reason + ": " + (failure.hasProxy ? "the proxy for " : "") + failure.server};
}

const char* connectReason(int systemError) {
  switch (systemError) {
    case ECONNREFUSED:
      return "connection refused";
    case ENETUNREACH:
      return "network unreachable";
    case EHOSTUNREACH:
      return "host unreachable";
    default:
      return "could not connect";
  }
}

/// For a handshake that failed on account of the chain, or of something else, told by `otherwise`.
Verdict handshakeVerdict(long verifyResult, const char* otherwise) {
  if (verifyResult == X509_V_OK || verifyResult == X509_V_ERR_UNSPECIFIED) {
    return {Kind::secureConnectionFailed, otherwise};
  }
  return {Kind::secureConnectionFailed,
          std::string("the certificate is not trusted: ") + X509_verify_cert_error_string(verifyResult)};
}

Verdict verdict(const TransferFailure& failure) {
  if (failure.headTooLarge) return {Kind::answerTooLarge, "the headers of the answer are too large"};
  if (failure.bodyTooLarge) return {Kind::answerTooLarge, "the answer is too large"};
  switch (failure.code) {
    case CURLE_COULDNT_RESOLVE_HOST:
      return {Kind::cannotFindHost, "could not resolve host: " + failure.server};
    case CURLE_COULDNT_RESOLVE_PROXY:
      return {Kind::cannotFindHost, "could not resolve proxy"};
    case CURLE_COULDNT_CONNECT:
      return connectVerdict(connectReason(failure.systemError), failure);
    case CURLE_PROXY:
      return {Kind::cannotConnect, "the proxy refused the connection: " + failure.server};
    case CURLE_OPERATION_TIMEDOUT:
      if (failure.connected) return {Kind::timedOut, "timed out"};
      return connectVerdict("connecting timed out", failure);

    case CURLE_PEER_FAILED_VERIFICATION:
      return handshakeVerdict(failure.verifyResult, "the certificate is not for this host");
    case CURLE_SSL_CACERT_BADFILE:
      return {Kind::secureConnectionFailed, "the file of trusted authorities is not readable"};
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_SSL_CIPHER:
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_SSL_ISSUER_ERROR:
    case CURLE_SSL_CLIENTCERT:
      return {Kind::secureConnectionFailed, "could not agree on a secure connection"};

    case CURLE_GOT_NOTHING:
      return {Kind::connectionLost, "connection closed without an answer"};
    case CURLE_PARTIAL_FILE:
      return {Kind::connectionLost, "the answer was cut short"};
    case CURLE_SEND_ERROR:
    case CURLE_RECV_ERROR:
    case CURLE_SEND_FAIL_REWIND:
    case CURLE_HTTP2:
    case CURLE_HTTP2_STREAM:
    case CURLE_ABORTED_BY_CALLBACK:  // the request would have been sent twice
      return {Kind::connectionLost, "connection lost"};

    case CURLE_WEIRD_SERVER_REPLY:
      return {Kind::invalidAnswer, "the answer is not HTTP"};
    case CURLE_BAD_CONTENT_ENCODING:
      return {Kind::invalidAnswer, "the encoding of the answer is broken"};
    case CURLE_UNSUPPORTED_PROTOCOL:
      if (failure.connected) return {Kind::invalidAnswer, "the answer is not HTTP"};
      return {Kind::invalidRequest, "the address is not https"};
    case CURLE_URL_MALFORMAT:
      return {Kind::invalidRequest, "the address is not valid"};
    case CURLE_LOGIN_DENIED:
      return {Kind::invalidRequest, "the address holds a user name"};

    default:
      return {Kind::other, curl_easy_strerror(failure.code)};
  }
}

}  // namespace

HTTPError transferError(const TransferFailure& failure) {
  auto [kind, message] = verdict(failure);
  return HTTPError(kind, failure.statusCode, std::move(message), static_cast<int>(failure.code));
}

HTTPError fileError(const std::filesystem::filesystem_error& failure, HTTPStatusCode status) {
  return HTTPError(Kind::fileSystem, status, "a file failed: " + failure.code().message(), 0,
                   std::make_shared<std::filesystem::filesystem_error>(failure));
}

}  // namespace ZAK
