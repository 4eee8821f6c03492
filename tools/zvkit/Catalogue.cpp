#include "Catalogue.hpp"

#include "Binding.hpp"

#include <zvapikit/domains/ContentDomain.hpp>

#include <algorithm>

namespace zvkit {
namespace {

using namespace ZAK;

std::vector<Operation> makeCatalogue() {
  return {
      bind("content", "createMyPost", &ContentDomain::createMyPost, {"post"}),
      bind("content", "post", &ContentDomain::post, {"for"}),
      bind("content", "deleteMyPost", &ContentDomain::deleteMyPost, {}),
      bind("content", "updateCaption", &ContentDomain::updateCaption, {"caption"}),
      bind("content", "updateVisibility", &ContentDomain::updateVisibility, {"visibility"}),
      bind("content", "notifyScreenshot", &ContentDomain::notifyScreenshot, {"forPostId", "by"}),
      bind("content", "addComment", &ContentDomain::addComment, {"comment", "on", "by"}),
      bind("content", "deleteComments", &ContentDomain::deleteComments, {"commentIds", "on", "by"}),
      bind("content", "addEmoji", &ContentDomain::addEmoji, {"emoji", "on", "by"}),
      bind("content", "addInstant", &ContentDomain::addInstant, {"instant", "on", "by"}),
      bind("content", "deleteQuiblets", &ContentDomain::deleteQuiblets, {"quibletIds", "from", "by"}),
  };
}

}  // namespace

const std::vector<Operation>& catalogue() {
  static const std::vector<Operation> operations = makeCatalogue();
  return operations;
}

const Operation& find(std::string_view fullName) {
  const auto& operations = catalogue();
  const auto found =
      std::find_if(operations.begin(), operations.end(), [&](const auto& o) { return o.fullName() == fullName; });
  if (found == operations.end()) {
    throw UsageError("no operation \"" + std::string(fullName) + "\"; `zvkit list` tells which there are");
  }
  return *found;
}

void checkArguments(const nlohmann::json& arguments, const std::vector<Argument>& known) {
  if (!arguments.is_object()) throw UsageError("the arguments must be one JSON object");
  for (const auto& [name, value] : arguments.items()) {
    const bool isKnown =
        std::any_of(known.begin(), known.end(), [&, &key = name](const auto& a) { return a.name == key; });
    if (!isKnown) throw UsageError("unknown argument \"" + name + "\"");
  }
}

}  // namespace zvkit
