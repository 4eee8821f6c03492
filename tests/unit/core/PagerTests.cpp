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

TEST(Pager, ReadsAListToItsEndByPagesByElementsAndMixed) {
  Shelf shelf{{{"none", Page({"a", "b"}, "i1")}, {"i1", Page({}, "i2")}, {"i2", Page({"c"}, {})}}, {}, {}};
  Runner runner;
  EXPECT_THAT(runner.run(readOneByOne(pages(Shelves{&shelf}, &Shelves::read, "upper"))), ElementsAre("a", "b", "c"));
  EXPECT_THAT(shelf.asked, ElementsAre("none", "i1", "i2"));

  auto pager = pages(Shelves{&shelf}, &Shelves::read, "upper");
  EXPECT_EQ(runner.run(pager.nextElement()), "a");
  EXPECT_THAT(*runner.run(pager.next()), ElementsAre("b"));
  EXPECT_THAT(*runner.run(pager.next()), ElementsAre());
  EXPECT_THAT(*runner.run(pager.next()), ElementsAre("c"));
  EXPECT_EQ(pager.nextCursor(), CursorDto::end());
  EXPECT_FALSE(runner.run(pager.next()));
  EXPECT_FALSE(runner.run(pager.nextElement()));

  EXPECT_THAT(runner.run(readFirst(&shelf)), ElementsAre("a", "b")) << "from a pager that is gone meanwhile";

  // An index that would ask for the end is the end.
  shelf.pages = {{"none", Page({"a"}, "")}};
  shelf.asked.clear();
  EXPECT_THAT(runner.run(readOneByOne(pages(Shelves{&shelf}, &Shelves::read, "upper"))), ElementsAre("a"));
}

TEST(Pager, ReadsAPageAgainThatFailed) {
  Shelf shelf{{{"none", Page({"a"}, "i1")}, {"i1", Page({"b"}, {})}}, "i1", {}};
  Runner runner;
  auto pager = pages(Shelves{&shelf}, &Shelves::read, "upper");
  EXPECT_THAT(*runner.run(pager.next()), ElementsAre("a"));
  EXPECT_THROW((void)runner.run(pager.next()), std::runtime_error);
  EXPECT_THAT(*runner.run(pager.next()), ElementsAre("b"));
}

TEST(Pager, RefusesAListThatLeadsBack) {
  Shelf shelf{{{"none", Page({"a"}, "i1")}, {"i1", Page({"b"}, "i2")}, {"i2", Page({"c"}, "i1")}}, {}, {}};
  Runner runner;
  auto pager = pages(Shelves{&shelf}, &Shelves::read, "upper");
  for (int page = 0; page < 3; ++page) EXPECT_TRUE(runner.run(pager.next()));
  EXPECT_THROW((void)runner.run(pager.next()), RepeatedCursorError);
  EXPECT_THAT(shelf.asked, ElementsAre("none", "i1", "i2"));
}

TEST(Pager, StopsAtItsLimitAndGoesOnFromThere) {
  Shelf shelf{{{"none", Page({"a"}, "i1")}, {"i1", Page({"b"}, "i2")}, {"i2", Page({"c"}, {})}}, {}, {}};
  Runner runner;
  auto pager = pages(Shelves{&shelf}, &Shelves::read, "upper");
  pager.setMaxPages(2);
  EXPECT_THAT(runner.run(readOneByOne(pager)), ElementsAre("a", "b"));
  EXPECT_EQ(pager.nextCursor(), CursorDto::nextIndex("i2"));

  const auto read = [&](std::optional<CursorDto> cursor) { return shelf.read("upper", std::move(cursor)); };
  EXPECT_THAT(runner.run(readOneByOne(Pager<std::string>(read, 5, pager.nextCursor()))), ElementsAre("c"));
}

}  // namespace
}  // namespace ZAK::Tests
