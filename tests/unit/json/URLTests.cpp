#include <zvapikit/json/URL.hpp>

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace ZAK {
namespace {

TEST(URL, KeepsWhatIsValidEscapesWhatIsNotLegalAndRefusesTheRest) {
  const auto read = [](std::string_view text) {
    const std::optional<URL> url = URL::parse(text);
    return url ? url->string() : "refused";
  };
  // Byte for byte, since a signature may cover it.
  for (const char* text :
       {"https://h.example/p%2Fq?X-Signature=a%2bc&n=%C3%A9&empty=&u=a/b?c:d@e", "https://h.example/a/../b/./c//d",
        "HTTPS://H.Example:8443/a#f?g", "https://user:secret@[::1]:80/", "https://h.example:65535/",
        "https://h.example", "https://h.example:/", "mailto:a@b.example", "a/b.jpg?x=1", "/a:b", "?q"}) {
    EXPECT_EQ(read(text), text);
  }
  const std::pair<const char*, const char*> escaped[] = {
      {"https://h.example/a b\"<>\\^`{|}é", "https://h.example/a%20b%22%3C%3E%5C%5E%60%7B%7C%7D%C3%A9"},
      {"https://h.example/a[1]?b[2]#c[3]", "https://h.example/a%5B1%5D?b%5B2%5D#c%5B3%5D"},
      {"https://h.example/100%/%zz/%4", "https://h.example/100%25/%25zz/%254"},
      {"https://h.example/a#b#c", "https://h.example/a#b%23c"},
      {"https://h.example/\n\r\t", "https://h.example/%0A%0D%09"},
      {"a b", "a%20b"},
  };
  for (const auto& [text, expected] : escaped) EXPECT_EQ(read(text), expected);
  for (const char* text :
       {"", "https://", "https:///path", "https://a b/", "https://[::1/", "https://[::1]x/", "://h.example/",
        "//h.example:8a", "https://h.exämple/", "1https://h.example/", "ht tps://h.example/", "https://h.example:port/",
        "https://h.example:65536/", "https://h.example:80:80/", "https://h.example:000000000000000000065536/"}) {
    EXPECT_EQ(read(text), "refused") << text;
  }
  EXPECT_EQ(read(std::string_view("https://h.example\0.other/", 25)), "refused");
}

TEST(URL, TellsItsParts) {
  struct {
    const char* text;
    const char* scheme;
    const char* host;
    std::optional<int> port;
    const char* path;
    const char* withoutQuery;
    const char* extension = "";
  } const cases[] = {
      {"HTTPS://User@H.Example:8443/a%20b?c#d", "https", "h.example", 8443, "/a%20b",
       "HTTPS://User@H.Example:8443/a%20b"},
      {"https://h.example/v.mp4?x=1.z", "https", "h.example", 443, "/v.mp4", "https://h.example/v.mp4", "mp4"},
      {"https://h.example", "https", "h.example", 443, "", "https://h.example"},
      {"http://[::1]:/a#b?c", "http", "::1", 80, "/a", "http://[::1]:/a"},
      {"ftp://h.example/v.m%704", "ftp", "h.example", std::nullopt, "/v.m%704", "ftp://h.example/v.m%704", "mp4"},
      {"a.b/c?d.e", "", "", std::nullopt, "a.b/c", "a.b/c"},
      {"a.tar.gz#a.b", "", "", std::nullopt, "a.tar.gz", "a.tar.gz", "gz"},
      {"v%2Emov", "", "", std::nullopt, "v%2Emov", "v%2Emov", "mov"},
      {"v.a%2Fb", "", "", std::nullopt, "v.a%2Fb", "v.a%2Fb"},
      {"/.mp4", "", "", std::nullopt, "/.mp4", "/.mp4"},
  };
  for (const auto& expected : cases) {
    SCOPED_TRACE(expected.text);
    const URL url = URL::parse(expected.text).value();
    EXPECT_EQ(url.scheme(), expected.scheme);
    EXPECT_EQ(url.host(), expected.host);
    EXPECT_EQ(url.port(), expected.port);
    EXPECT_EQ(url.path(), expected.path);
    EXPECT_EQ(url.withoutQuery(), expected.withoutQuery);
    EXPECT_EQ(url.pathExtension(), expected.extension);
  }
  EXPECT_TRUE(URL().empty());
  EXPECT_EQ(URL().host(), "");
}

}  // namespace
}  // namespace ZAK
