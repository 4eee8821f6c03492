#include <zvapikit/http/HTTPBody.hpp>

#include <gtest/gtest.h>

#include <stdexcept>

namespace ZAK {
namespace {

TEST(HTTPBody, nothingBreaksOutOfItsPartOfAForm) {
  const HTTPBodyPart part("n\"a\r\nme", HTTPBody::data("text", ""), "Zo\xc3\xab \"1\"\r\n.jpg");
  EXPECT_EQ(HTTPBody::multipart({part, HTTPBodyPart("none", HTTPBody())}, "b'+_.-1").bytes(),
            "--b'+_.-1\r\nContent-Disposition: form-data; name=\"n%22a%0D%0Ame\"; "
            "filename=\"Zo\xc3\xab %221%22%0D%0A.jpg\"\r\n\r\ntext\r\n"
            "--b'+_.-1\r\nContent-Disposition: form-data; name=\"none\"\r\n\r\n\r\n--b'+_.-1--\r\n");
  EXPECT_NE(HTTPBody::multipart({}).contentType(), HTTPBody::multipart({}).contentType());
  for (const char* boundary : {"a b", "a\r\nX: 1", "\xc3\xab", "\""}) {
    EXPECT_THROW(HTTPBody::multipart({}, boundary), std::invalid_argument) << boundary;
  }
  EXPECT_THROW(HTTPBody::multipart({}, std::string(71, 'b')), std::invalid_argument);
  EXPECT_THROW(HTTPBody::multipart({HTTPBodyPart("n", HTTPBody::data("", "a/b\r\nX: 1"))}), std::invalid_argument);
}

}  // namespace
}  // namespace ZAK
