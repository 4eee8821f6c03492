#include "support/TemporaryDirectory.hpp"

#include <zvapikit/http/HTTPBody.hpp>

#include <gmock/gmock.h>

#include <stdexcept>

namespace ZAK {
namespace {

namespace fs = std::filesystem;

TEST(HTTPBody, writesFormsAsBrowsersDo) {
  const Tests::TemporaryDirectory root;
  const fs::path picture = root.write("a.jpg", "\xff\xd8 picture");
  const auto body = HTTPBody::multipart(
      {HTTPBodyPart("plain", HTTPBody::data("text", "")),
       HTTPBodyPart("n\"a\r\nme\\", HTTPBody::file(picture, MIMEType::uploadImage), "Zo\xc3\xab \"1\"\r\n.jpg"),
       HTTPBodyPart("none", HTTPBody())},
      "b'+_.-1");
  EXPECT_EQ(body.contentType(), "multipart/form-data; boundary=b'+_.-1");
  EXPECT_EQ(body.bytes(),
            "--b'+_.-1\r\nContent-Disposition: form-data; name=\"plain\"\r\n\r\ntext\r\n"
            "--b'+_.-1\r\nContent-Disposition: form-data; name=\"n%22a%0D%0Ame\\\"; "
            "filename=\"Zo\xc3\xab %221%22%0D%0A.jpg\"\r\nContent-Type: image/jpeg\r\n\r\n\xff\xd8 picture\r\n"
            "--b'+_.-1\r\nContent-Disposition: form-data; name=\"none\"\r\n\r\n\r\n--b'+_.-1--\r\n");

  const auto other = HTTPBody::multipart({});
  EXPECT_THAT(other.contentType(), testing::MatchesRegex("multipart/form-data; boundary=[A-Za-z0-9-]{32,70}"));
  EXPECT_NE(other.contentType(), HTTPBody::multipart({}).contentType());

  for (const char* boundary : {"a b", "a\r\nX: 1", "\xc3\xab", "\""}) {
    EXPECT_THROW(HTTPBody::multipart({}, boundary), std::invalid_argument) << boundary;
  }
  EXPECT_THROW(HTTPBody::multipart({}, std::string(71, 'b')), std::invalid_argument);
  EXPECT_THROW(HTTPBody::multipart({HTTPBodyPart("n", HTTPBody::data("", "a/b\r\nX: 1"))}), std::invalid_argument);
}

}  // namespace
}  // namespace ZAK
