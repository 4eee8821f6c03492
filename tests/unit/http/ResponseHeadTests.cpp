#include "http/ResponseHead.hpp"

#include <gmock/gmock.h>

#include <vector>

namespace ZAK {
namespace {

using testing::ElementsAre;

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

TEST(ResponseHead, knowsLengthsThatContradictEachOther) {
  const std::pair<std::vector<std::string_view>, bool> cases[] = {
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

}  // namespace
}  // namespace ZAK
