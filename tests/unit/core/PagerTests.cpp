#include "support/Runner.hpp"

#include <zvapikit/core/Pager.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

namespace ZAK::Tests {
namespace {

using boost::asio::awaitable;
using Page = CollectionDto<std::string>;
using testing::ElementsAre;

/// A list kept as pages by their index; one index may fail once.
class Shelf {
 public:
  std::map<std::string, Page> pages;
  std::string failing;
  std::vector<std::string> asked;

  awaitable<Page> read(std::string shelf, std::optional<CursorDto> cursor) {
    EXPECT_EQ(shelf, "upper");
    asked.push_back(cursor ? cursor->index().value_or("start") : "none");
    if (asked.back() == failing) {
      failing.clear();
      throw std::runtime_error("lost");
    }
    co_return pages.at(asked.back());
  }
};

/// What a group of operations is: a handle that may be copied.
struct Shelves {
  Shelf* shelf;
  awaitable<Page> read(std::string name, std::optional<CursorDto> cursor) { return shelf->read(name, cursor); }
};

awaitable<std::vector<std::string>> readOneByOne(Pager<std::string> pager) {
  std::vector<std::string> all;
  while (auto element = co_await pager.nextElement()) all.push_back(*element);
  co_return all;
}

awaitable<std::vector<std::string>> readFirst(Shelf* shelf) {
  const auto page = co_await pages(Shelves{shelf}, &Shelves::read, "upper").next();
  co_return *page;
}

struct PagerTest : testing::Test {
  Pager<std::string> pager() { return pages(Shelves{&shelf}, &Shelves::read, "upper"); }

  Shelf shelf{{{"none", Page({"a", "b"}, "i1")}, {"i1", Page({}, "i2")}, {"i2", Page({"c"}, {})}}, {}, {}};
  Runner runner;
};

TEST_F(PagerTest, readsAListToItsEndByPagesByElementsAndMixed) {
  EXPECT_THAT(runner.run(readOneByOne(pager())), ElementsAre("a", "b", "c"));
  EXPECT_THAT(shelf.asked, ElementsAre("none", "i1", "i2"));
  EXPECT_THAT(runner.run(readFirst(&shelf)), ElementsAre("a", "b")) << "from a pager that is gone meanwhile";

  auto mixed = pager();
  shelf.failing = "i1";
  EXPECT_EQ(runner.run(mixed.nextElement()), "a");
  EXPECT_THAT(*runner.run(mixed.next()), ElementsAre("b"));
  EXPECT_THROW((void)runner.run(mixed.next()), std::runtime_error);
  EXPECT_THAT(*runner.run(mixed.next()), ElementsAre()) << "a page that failed is read again";
  EXPECT_THAT(*runner.run(mixed.next()), ElementsAre("c"));
  EXPECT_EQ(mixed.nextCursor(), CursorDto::end());
  EXPECT_FALSE(runner.run(mixed.next()));
  EXPECT_FALSE(runner.run(mixed.nextElement()));

  shelf.pages = {{"none", Page({"a"}, "")}};
  EXPECT_THAT(runner.run(readOneByOne(pager())), ElementsAre("a")) << "an index that would ask for the end is the end";
}

TEST_F(PagerTest, refusesAListThatLeadsBack) {
  shelf.pages["i2"].next = "i1";
  auto endless = pager();
  for (int page = 0; page < 3; ++page) EXPECT_TRUE(runner.run(endless.next()));
  EXPECT_THROW((void)runner.run(endless.next()), RepeatedCursorError);
  EXPECT_THAT(shelf.asked, ElementsAre("none", "i1", "i2"));
}

TEST_F(PagerTest, stopsAtItsLimitAndGoesOnFromThere) {
  auto limited = pager();
  limited.setMaxPages(2);
  EXPECT_THAT(runner.run(readOneByOne(limited)), ElementsAre("a", "b"));
  EXPECT_EQ(limited.nextCursor(), CursorDto::nextIndex("i2"));

  const auto read = [&](std::optional<CursorDto> cursor) { return shelf.read("upper", std::move(cursor)); };
  EXPECT_THAT(runner.run(readOneByOne(Pager<std::string>(read, 5, limited.nextCursor()))), ElementsAre("c"));
}

}  // namespace
}  // namespace ZAK::Tests
