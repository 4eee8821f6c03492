#pragma once

#include "Call.hpp"

#include <cstddef>
#include <optional>
#include <string>

namespace ZAK {

/// The part of a list that a request asks for.
struct Page {
  std::size_t begin = 0;
  std::size_t end = 0;
  std::optional<std::string> next{};  ///< the index of the page behind this one; absent on the last
};

/// Reads the query item `page`. Absent or without a value it asks for the start, with an empty value for what follows
/// the last page, which is nothing, and else for the page with this index. An index holds for one list of one user,
/// whatever has come or gone there; any other text is refused with 400.
[[nodiscard]] Page requestedPage(const Call& call, std::size_t total);

/// The requested page as a collection, an element by `record`. Refuses query items other than `page`.
template <class Elements, class Record>
nlohmann::json collection(const Call& call, const Elements& elements, Record record) {
  call.checkQuery({"page"});
  const Page page = requestedPage(call, elements.size());
  nlohmann::json body{{"data", nlohmann::json::array()}};
  for (std::size_t i = page.begin; i < page.end; ++i) body["data"].push_back(record(elements[i]));
  if (page.next) body["next"] = *page.next;
  return body;
}

}  // namespace ZAK
