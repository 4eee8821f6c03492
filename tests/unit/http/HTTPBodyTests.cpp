#include "http/BodyReader.hpp"
#include "support/TemporaryDirectory.hpp"

#include <zvapikit/http/HTTPBody.hpp>

#include <gmock/gmock.h>

#include <functional>
#include <stdexcept>
#include <sys/stat.h>

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

std::string readThrough(BodyReader& reader, std::size_t step) {
  std::string result;
  std::string room(step, '\0');
  while (const std::size_t count = reader.read(room)) result.append(room, 0, count);
  return result;
}

TEST(BodyReader, givesEveryByteOnceWhateverTheRoom) {
  const Tests::TemporaryDirectory root;
  const fs::path file = root.write("file", "0123456789");
  const fs::path empty = root.write("empty", "");
  fs::create_symlink(file, root.path() / "link");
  const auto body =
      HTTPBody::multipart({HTTPBodyPart("a", HTTPBody::file(root.path() / "link")),
                           HTTPBodyPart("b", HTTPBody::file(empty)), HTTPBodyPart("c", HTTPBody::data("memory"))});
  const std::string whole = body.bytes();
  BodyReader reader(body);
  EXPECT_EQ(reader.size(), whole.size());
  for (std::size_t step = 1; step < whole.size() + 2; ++step) {
    EXPECT_EQ(readThrough(reader, step), whole) << step;
    reader.rewind();
    readThrough(reader, whole.size() / 2);
    reader.rewind();
  }
}

TEST(BodyReader, aFileThatIsNotWhatItWasFailsBeforeItsLastByte) {
  const Tests::TemporaryDirectory root;
  const fs::path file = root.path() / "file";
  const std::function<void()> spoils[] = {
      [&] { fs::resize_file(file, 9); },
      [&] { fs::resize_file(file, 11); },
      [&] { fs::resize_file(file, 0); },
      [&] { fs::last_write_time(file, fs::file_time_type::clock::now() - std::chrono::hours(1)); },
  };
  for (const auto& spoil : spoils) {
    root.write("file", "0123456789");
    BodyReader reader(HTTPBody::file(file));
    std::string room(4, '\0');
    ASSERT_EQ(reader.read(room), 4U);
    spoil();
    std::size_t given = 4;
    EXPECT_THROW(
        {
          while (const std::size_t count = reader.read(room)) given += count;
        },
        fs::filesystem_error);
    EXPECT_LT(given, 10U);
  }
  const fs::path pipe = root.path() / "pipe";
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  for (const fs::path& none : {root.path() / "missing", root.path(), pipe, fs::path("/dev/zero"), fs::path()}) {
    EXPECT_THROW(BodyReader(HTTPBody::file(none)), fs::filesystem_error) << none;
  }
}

}  // namespace
}  // namespace ZAK
