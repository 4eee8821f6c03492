#include "json/NestingDepth.hpp"

#include <zvapikit/json/JSONPrinting.hpp>

#include <nlohmann/json.hpp>
#include <simdjson.h>

#include <algorithm>
#include <array>

namespace ZAK {
namespace {

using Tree = nlohmann::json;

constexpr std::string_view invalid = "The given data was not valid JSON.";

void redact(Tree& tree) {
  constexpr std::array<std::string_view, 5> secrets = {"access_token", "refresh_token", "token", "firebase_token",
                                                       "client_secret"};
  if (tree.is_object()) {
    for (auto& [key, value] : tree.items()) {
      if (!value.is_null() && std::find(secrets.begin(), secrets.end(), key) != secrets.end()) {
        value = "<redacted>";
      } else {
        redact(value);
      }
    }
  } else if (tree.is_array()) {
    for (Tree& value : tree) redact(value);
  } else if (tree.is_string()) {
    // Whoever has a signed URL may do what it was signed for.
    auto& text = tree.get_ref<std::string&>();
    const std::size_t query = text.find('?');
    if (text.starts_with("https://") && query != std::string::npos) text.replace(query + 1, text.npos, "<redacted>");
  }
}

}  // namespace

std::string prettyPrinted(std::string_view body, JSONPrinting printing) {
  if (!simdjson::validate_utf8(body)) return "-";
  // Counted beforehand, since the tree is written by recursion.
  if (detail::nestingDepth(body) > detail::maximumNesting) return "The JSON is nested too deeply.";
  try {
    Tree tree = Tree::parse(body);
    if (printing == JSONPrinting::redacted) redact(tree);
    return tree.dump(2);
  } catch (const nlohmann::json::exception& error) {
    if (printing == JSONPrinting::redacted) return std::string(invalid);
    std::string text = error.what();
    // The parser may have stopped in the middle of a character.
    if (!simdjson::validate_utf8(text))
      std::replace_if(
          text.begin(), text.end(), [](char c) { return c < 0; }, '?');
    return text;
  }
}

}  // namespace ZAK
