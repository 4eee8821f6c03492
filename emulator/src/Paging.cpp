#include "Paging.hpp"

#include <algorithm>
#include <charconv>

namespace ZAK {

namespace {

/// Names the place in this user's list under this path, and no other list.
std::string indexOf(const Call& call, std::size_t place) {
  const std::string text = std::to_string(place);
  return text + "-" + EmulatorText::sha256Hex(call.userId + call.request.path + "#" + text).substr(0, 12);
}

std::size_t placeOf(const Call& call, const std::string& index) {
  std::size_t place = 0;
  std::from_chars(index.data(), index.data() + index.size(), place);
  if (index != indexOf(call, place)) throw Refusal(400, "page is no index of this list");
  return place;
}

}  // namespace

Page requestedPage(const Call& call, std::size_t total) {
  const auto item = call.queryItem("page");
  if (item && item->value == "") return {};
  const std::size_t begin = item && item->value ? std::min(placeOf(call, *item->value), total) : 0;
  Page page{begin, begin + std::min(call.options.pageSize, total - begin)};
  if (page.end < total) page.next = indexOf(call, page.end);
  return page;
}

}  // namespace ZAK
