#include "TransportFixture.hpp"
#include "support/EnvironmentVariable.hpp"
#include "support/TemporaryDirectory.hpp"

namespace ZAK::Tests {
namespace {

using Flaw = TestAuthority::Flaw;
using Kind = HTTPError::Kind;

const std::string ok = answerOf("ok");

/// All that the environment could do to a transfer, set before libcurl first looks at it: every test of this program
/// runs with it.
struct HostileEnvironment {
  HostileEnvironment() {
    for (const char* name : {"http_proxy", "https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"}) {
      ::setenv(name, "http://127.0.0.1:1", 1);
    }
    ::setenv("no_proxy", "*", 1);
    for (const char* name : {"SSL_CERT_FILE", "SSL_CERT_DIR", "CURL_CA_BUNDLE"}) ::setenv(name, "/dev/null", 1);
    ::setenv("SSLKEYLOGFILE", keyLog.c_str(), 1);
    const auto lax = files.write("openssl",
                                 "openssl_conf = a\n[a]\nssl_conf = b\n[b]\nsystem_default = c\n"
                                 "[c]\nMinProtocol = TLSv1\nCipherString = DEFAULT@SECLEVEL=0\n");
    ::setenv("OPENSSL_CONF", lax.c_str(), 1);
    files.write(".netrc", "machine localhost login user password secret\n");
  }
  TemporaryDirectory files;
  std::filesystem::path keyLog = files.path() / "keys";
} const hostile;

class SecurityTest : public TransportFixture {};

TEST_F(SecurityTest, untrustedCertificatesFailBeforeTheRequestIsSent) {
  const std::pair<Flaw, const char*> cases[] = {
      {Flaw::expired, "the certificate is not trusted: certificate has expired"},
      {Flaw::notYetValid, "the certificate is not trusted: certificate is not yet valid"},
      {Flaw::wrongHost, "the certificate is not for this host"},
      {Flaw::selfSigned, "the certificate is not trusted: self-signed certificate"},
      {Flaw::untrustedRoot, "the certificate is not trusted: unable to get local issuer certificate"},
      {Flaw::incompleteChain, "the certificate is not trusted: unable to get local issuer certificate"},
  };
  for (const auto& [flaw, text] : cases) {
    SCOPED_TRACE(text);
    const FaultServer server(authority().issue(flaw), FaultServer::answering(ok));
    const auto result = perform(get(server.url()));
    EXPECT_EQ(errorKind(result.response), Kind::secureConnectionFailed);
    EXPECT_EQ(told(result.response), text);
    EXPECT_FALSE(result.answerStarted);
    EXPECT_EQ(server.connections(), 1);
    EXPECT_EQ(server.bytes(), 0U);
  }
}

TEST_F(SecurityTest, onlyTheGivenAuthorityIsTrusted) {
  const FaultServer server(FaultServer::answering(ok));
  EXPECT_EQ(told(perform(get(server.url())).response), "ok");
  const TestAuthority stranger;
  for (const std::filesystem::path& file : {stranger.file(), std::filesystem::path("/nowhere.pem"), {}}) {
    auto others = options();
    others.caFile = file;
    EXPECT_EQ(errorKind(perform(get(server.url()), others).response), Kind::secureConnectionFailed) << file;
  }
  EXPECT_EQ(server.requests(), 1);
}

/// True when OpenSSL's own client, told to take anything, gets through to the server.
bool isReachable(const FaultServer& server) {
  const std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> context(SSL_CTX_new(TLS_client_method()), SSL_CTX_free);
  SSL_CTX_set_min_proto_version(context.get(), TLS1_VERSION);
  SSL_CTX_set_security_level(context.get(), 0);
  const std::unique_ptr<BIO, decltype(&BIO_free_all)> client(BIO_new_ssl_connect(context.get()), BIO_free_all);
  BIO_set_conn_hostname(client.get(), ("127.0.0.1:" + std::to_string(server.port())).c_str());
  return BIO_do_handshake(client.get()) == 1;
}

TEST_F(SecurityTest, oldProtocolsFailBeforeTheRequestIsSent) {
  for (const int newest : {TLS1_VERSION, TLS1_1_VERSION, TLS1_2_VERSION}) {
    const bool works = newest == TLS1_2_VERSION;
    const FaultServer server(FaultServer::answering(ok), newest);
    ASSERT_TRUE(isReachable(server));
    const auto response = perform(get(server.url())).response;
    EXPECT_EQ(told(response), works ? "ok" : "could not agree on a secure connection");
    EXPECT_EQ(errorKind(response), works ? std::nullopt : std::optional(Kind::secureConnectionFailed));
    EXPECT_EQ(server.connections(), 2) << newest;
    EXPECT_EQ(server.bytes() > 0, works) << newest;
  }
}

TEST_F(SecurityTest, theEnvironmentSteersNothing) {
  const EnvironmentVariable home("HOME", hostile.files.path().c_str());
  std::string request;
  const FaultServer server([&](FaultServer::Connection& client) {
    if (!client.handshake()) return;
    request = client.readRequest();
    client.send(ok);
  });
  EXPECT_EQ(told(perform(get(server.url())).response), "ok") << "a proxy or a file of authorities came from there";
  EXPECT_EQ(request.find("Authorization"), std::string::npos) << request;
  EXPECT_EQ(contentOf(hostile.keyLog), "") << "session keys reached the disk";
}

TEST_F(SecurityTest, redirectsElsewhereCarryNeitherHeaderNorBody) {
  std::string there;
  const FaultServer other([&](FaultServer::Connection& client) {
    if (!client.handshake()) return;
    there = client.readRequest();
    client.send(ok);
  });
  std::string here;
  std::string location;
  std::string status;
  const FaultServer server([&](FaultServer::Connection& client) {
    if (!client.handshake()) return;
    for (std::string request; !(request = client.readRequest()).empty();) {
      here = request;
      const std::string target = request.starts_with("GET /start") ? "/next" : location;
      client.send(answerOf("", "X-Leak: 1\r\nLocation: " + target + "\r\n", status));
    }
  });
  auto request = get(server.url("/start"));
  request.headers.set(HTTPHeaders::Element::bearer("secret"));
  request.headers.set(HTTPHeaders::Element::userAgent("agent"));
  request.body = HTTPBody::data("secret");
  request.maxRedirects = 2;
  location = other.url("/there?a=b");
  for (const char* each : {"301", "302", "303", "307", "308"}) {
    status = each;
    there.clear();
    const auto result = perform(request);
    EXPECT_EQ(told(result.response), "ok");
    EXPECT_FALSE(result.response.headers.value("X-Leak"));
    EXPECT_EQ(result.redirects, (std::vector{*URL::parse(server.url("/next")), *URL::parse(location)}));
    EXPECT_EQ(result.response.metrics.redirects, 2);
    EXPECT_TRUE(here.starts_with("GET /next HTTP/1.1\r\n")) << here;
    EXPECT_NE(here.find("Authorization: Bearer secret\r\n"), std::string::npos) << here;
    EXPECT_TRUE(here.ends_with("\r\n\r\nsecret")) << here;
    EXPECT_EQ(there, "GET /there?a=b HTTP/1.1\r\nHost: localhost:" + std::to_string(other.port()) + "\r\n\r\n");
  }
  location = "http://localhost:" + std::to_string(other.port()) + "/there";
  EXPECT_EQ(told(perform(request).response), "redirected to an address that is not https");
  EXPECT_EQ(other.connections(), 5) << "nothing was tried without TLS";
}

}  // namespace
}  // namespace ZAK::Tests
