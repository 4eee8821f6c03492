#include "http/URIText.hpp"

#include <gtest/gtest.h>

namespace ZAK {
namespace {

TEST(URIText, expandsTemplates) {
  const HTTPRequest::Variables variables{{"id", "p1"}, {"name", "a/b ?é%"}, {"empty", ""}, {"dots", "..."}};
  const std::vector<std::pair<std::string, std::string>> cases{
      {"/posts/{id}", "/posts/p1"},
      {"/users/{name}/x", "/users/a%2Fb%20%3F%C3%A9%25/x"},
      {"/a/{empty}/{missing}/b", "/a///b"},
      {"{id}{id}", "p1p1"},
      {"/{dots}", "/..."},
      {"/a/{id", "/a/{id"},
      {"/a}/{id}", "/a}/p1"},
      {"", ""},
  };
  for (const auto& [uri, expected] : cases) EXPECT_EQ(expandedTemplate(uri, variables), expected) << uri;
}

TEST(URIText, appendsPathsToTheBase) {
  const std::vector<std::array<std::string, 3>> cases{
      {"https://h.example/main/api", "/feeds/x", "https://h.example/main/api/feeds/x"},
      {"https://h.example/main/api/", "feeds/x", "https://h.example/main/api/feeds/x"},
      {"https://h.example", "/a/", "https://h.example/a/"},
      {"https://h.example/api?k=v#f", "a?x=1", "https://h.example/api/a?x=1"},
      {"https://h.example/api", "//other.example/a", "https://h.example/api//other.example/a"},
      {"https://h.example/api", "../a", "https://h.example/api/../a"},
  };
  for (const auto& [base, path, expected] : cases) EXPECT_EQ(joined(base, path), expected) << base << " + " << path;
}

TEST(URIText, appendsQueryItems) {
  const std::vector<URLQueryItem> one{{"page", "1"}};
  const std::vector<std::tuple<std::string, std::vector<URLQueryItem>, std::string>> cases{
      {"/a", {}, "/a"},
      {"/a#f", {}, "/a#f"},
      {"/a", {{"z", "1"}, {"a", "2"}, {"z", "3"}}, "/a?z=1&a=2&z=3"},
      {"/a", {{"page", std::nullopt}, {"q", ""}}, "/a?page&q="},
      {"/a", {{"k k", "a+b&c=d é~-._"}}, "/a?k%20k=a%2Bb%26c%3Dd%20%C3%A9~-._"},
      {"/a?x=1", one, "/a?x=1&page=1"},
      {"/a?", one, "/a?page=1"},
      {"/a?x&", one, "/a?x&page=1"},
      {"/a?x#f", one, "/a?x&page=1"},
  };
  for (const auto& [uri, items, expected] : cases) EXPECT_EQ(withQuery(uri, items), expected);
}

TEST(HTTPRequest, describesItselfWithoutASignature) {
  HTTPRequest below(HTTPMethod::get, "content/posts/{id}", {{"id", "p 1"}});
  below.addParameter("x", "y z");
  EXPECT_EQ(below.description(), "GET /content/posts/p%201?x=y%20z");
  HTTPRequest absolute(HTTPMethod::put, "https://bucket.example/o/{id}?signature=secret", {{"id", "7"}});
  absolute.addParameter("token", "secret");
  EXPECT_EQ(absolute.description(), "PUT https://bucket.example/o/7");
  EXPECT_EQ(HTTPRequest(HTTPMethod::delete_, "").description(), "DELETE /");
}

TEST(HTTPRequest, tellsAbsoluteURLsFromPaths) {
  for (const char* uri : {"https://h.example", "HTTPS://h.example/a", "http://h.example"}) {
    EXPECT_TRUE(HTTPRequest(HTTPMethod::get, uri).isAbsolute()) << uri;
  }
  // A variable must not be able to turn a path into another server.
  for (const char* uri : {"/a", "a?u=https://h.example", "://h.example", "{u}", "//h.example", "1https://h"}) {
    EXPECT_FALSE(HTTPRequest(HTTPMethod::get, uri, {{"u", "https://h.example"}}).isAbsolute()) << uri;
  }
}

}  // namespace
}  // namespace ZAK
