#include "http/CurlSettings.hpp"
#include "http/Redirect.hpp"
#include "http/ResponseHead.hpp"
#include "http/TransferError.hpp"

#include <gmock/gmock.h>
#include <openssl/x509_vfy.h>

#include <cerrno>
#include <vector>

namespace ZAK {
namespace {

using testing::ElementsAre;
using testing::UnorderedElementsAre;
using Kind = HTTPError::Kind;

ResponseHead headOf(const std::vector<std::string_view>& lines) {
  ResponseHead head;
  for (const auto line : lines) head.add(line);
  return head;
}

TEST(ResponseHead, keepsTheFinalAnswerAlone) {
  auto head = headOf({"HTTP/1.1 100 Continue\r\n", "X-Interim: 1\r\n", "\r\n", "HTTP/1.1 401 Unauthorized\r\n",
                      "WWW-Authenticate: Basic\r\n", "X-Folded: one\r\n", "\t two\r\n", "Empty:\r\n", "no field\r\n",
                      "www-authenticate:Bearer \r\n", "\r\n", "X-Trailer: 1\r\n"});
  EXPECT_EQ(head.statusCode().code(), 401);
  EXPECT_THAT(head.takeHeaders().elements(),
              ElementsAre(HTTPHeaders::Element("WWW-Authenticate", "Basic, Bearer"),
                          HTTPHeaders::Element("X-Folded", "one two"), HTTPHeaders::Element("Empty", "")));
}

TEST(ResponseHead, interimOrBrokenStatusIsNoAnswer) {
  for (const char* line : {"HTTP/1.1 103 Early Hints\r\n", "HTTP/1.1\r\n", "HTTP/1.1 abc\r\n"}) {
    const auto head = headOf({line, "X: 1\r\n"});
    EXPECT_TRUE(head.started()) << line;
    EXPECT_EQ(head.statusCode().code(), 0) << line;
    EXPECT_FALSE(head.complete()) << line;
  }
}

TEST(ResponseHead, knowsLengthsThatContradictEachOther) {
  const struct {
    std::vector<std::string_view> lines;
    bool contradicts;
  } cases[] = {
      {{"Content-Length: 5"}, false},
      {{"Content-Length: 5", "content-length: 5"}, false},
      {{"Content-Length: 5,5"}, false},
      {{"Content-Length: 5", "X: 1", "content-length: 50"}, true},
      {{"Content-Length: 5, 5", "Content-Length: 50"}, true},
  };
  for (const auto& [lines, contradicts] : cases) {
    auto head = headOf({"HTTP/1.1 200 OK"});
    for (const auto line : lines) head.add(line);
    EXPECT_EQ(head.contradictsItself(), contradicts) << lines.back();
  }
}

TEST(TransferError, tellsWhatFailed) {
  const struct {
    TransferFailure failure;
    Kind kind;
    std::string_view text;
  } cases[] = {
      {{CURLE_COULDNT_RESOLVE_HOST}, Kind::cannotFindHost, "could not resolve host"},
      {{CURLE_COULDNT_CONNECT, {}, ECONNREFUSED}, Kind::cannotConnect, "connection refused"},
      {{CURLE_COULDNT_CONNECT, {}, ENETUNREACH}, Kind::cannotConnect, "network unreachable"},
      {{CURLE_COULDNT_CONNECT}, Kind::cannotConnect, "could not connect"},
      {{CURLE_OPERATION_TIMEDOUT}, Kind::cannotConnect, "connecting timed out"},
      {{CURLE_OPERATION_TIMEDOUT, {}, 0, 0, true}, Kind::timedOut, "timed out"},
      {{CURLE_PEER_FAILED_VERIFICATION, {}, 0, X509_V_ERR_CERT_HAS_EXPIRED},
       Kind::secureConnectionFailed,
       "the certificate is not trusted: certificate has expired"},
      {{CURLE_PEER_FAILED_VERIFICATION, {}, 0, X509_V_ERR_UNSPECIFIED},
       Kind::secureConnectionFailed,
       "the certificate is not for this host"},
      {{CURLE_SSL_CONNECT_ERROR}, Kind::secureConnectionFailed, "could not agree on a secure connection"},
      {{CURLE_PARTIAL_FILE, HTTPStatusCode(200), 0, 0, true}, Kind::connectionLost, "the answer was cut short"},
      {{CURLE_UNSUPPORTED_PROTOCOL}, Kind::invalidRequest, "the address is not https"},
      {{CURLE_UNSUPPORTED_PROTOCOL, {}, 0, 0, true}, Kind::invalidAnswer, "the answer is not HTTP"},
      {{CURLE_WRITE_ERROR, HTTPStatusCode(200), 0, 0, true, true}, Kind::answerTooLarge, "the answer is too large"},
      {{CURLE_WRITE_ERROR, HTTPStatusCode(200), 0, 0, true}, Kind::other, curl_easy_strerror(CURLE_WRITE_ERROR)},
  };
  for (const auto& [failure, kind, text] : cases) {
    const auto error = transferError(failure);
    EXPECT_EQ(error.kind(), kind) << text;
    EXPECT_EQ(error.description(), text);
    EXPECT_EQ(error.statusCode(), failure.statusCode) << text;
    EXPECT_EQ(error.transportCode(), failure.code) << text;
  }
  // What fails while a request is sent or answered is one kind: it decides whether a request is sent again.
  for (const auto code : {CURLE_GOT_NOTHING, CURLE_SEND_ERROR, CURLE_RECV_ERROR, CURLE_HTTP2, CURLE_HTTP2_STREAM}) {
    EXPECT_EQ(transferError({code}).kind(), Kind::connectionLost) << code;
  }
}

std::vector<std::string> linesOf(const TransferRequest& request) {
  const auto lines = headerLines(request);
  std::vector<std::string> texts;
  for (const auto* line = lines.get(); line != nullptr; line = line->next) texts.emplace_back(line->data);
  return texts;
}

TEST(HeaderLines, sendEmptyValuesAndShutWhatLibcurlAdds) {
  TransferRequest request;
  EXPECT_THAT(linesOf(request), UnorderedElementsAre("Accept:", "Accept-Encoding:", "Expect:", "Content-Type:"));
  request.headers.set({"accept", "x/y"});
  request.headers.set({"Content-Type", "a/b"});
  request.headers.set({"X-Empty", ""});
  request.headers.set({"X-Blank", " "});
  EXPECT_THAT(linesOf(request), UnorderedElementsAre("accept: x/y", "Content-Type: a/b", "X-Empty;", "X-Blank;",
                                                     "Accept-Encoding:", "Expect:"));
}

TEST(Redirect, goesOnOnlyWhereItMay) {
  const struct {
    HTTPMethod method;
    int limit;
    std::size_t followed;
    std::optional<std::string> target;
    std::optional<std::string> destination;
    std::optional<Kind> error;
  } cases[] = {
      {HTTPMethod::get, 5, 4, "https://b.test/", "https://b.test/", {}},
      {HTTPMethod::head, 1, 0, "https://b.test/", "https://b.test/", {}},
      {HTTPMethod::get, 5, 5, "https://b.test/", {}, Kind::tooManyRedirects},
      {HTTPMethod::get, 0, 0, "https://b.test/", {}, {}},
      {HTTPMethod::post, 5, 0, "https://b.test/", {}, {}},
      {HTTPMethod::get, 5, 0, {}, {}, {}},
      {HTTPMethod::get, 5, 0, "http://b.test/", {}, Kind::other},
      {HTTPMethod::get, 5, 0, "file:///etc/passwd", {}, Kind::other},
      {HTTPMethod::get, 5, 0, "", {}, Kind::other},
  };
  for (const auto& given : cases) {
    SCOPED_TRACE(given.target.value_or("nowhere"));
    TransferRequest request;
    request.method = given.method;
    request.maxRedirects = given.limit;
    const auto step = nextStep(request, HTTPResponse(), given.target, given.followed);
    EXPECT_EQ(step.destination ? std::optional(step.destination->string()) : std::nullopt, given.destination);
    EXPECT_EQ(step.error ? std::optional(step.error->kind()) : std::nullopt, given.error);
  }
}

TEST(Redirect, anotherOriginGetsNoHeader) {
  const struct {
    const char* from;
    const char* to;
    bool keeps;
  } cases[] = {
      {"https://a.test/x", "https://a.test/y?z", true},    {"https://a.test/x", "https://A.test:443/y", true},
      {"https://a.test/x", "https://a.test:444/x", false}, {"https://a.test/x", "https://b.a.test/x", false},
      {"https://a.test/x", "http://a.test:443/x", false},
  };
  for (const auto& [from, to, keeps] : cases) {
    TransferRequest request;
    request.url = from;
    request.headers.set(HTTPHeaders::Element::bearer("secret"));
    request.body = HTTPBody::data("secret");
    redirect(request, URL::parse(to).value());
    EXPECT_EQ(request.url, to);
    EXPECT_EQ(!request.headers.elements().empty(), keeps) << to;
    EXPECT_EQ(request.body.isPresent(), keeps) << to;
  }
}

}  // namespace
}  // namespace ZAK
