#include "Router.hpp"

#include "Text.hpp"

namespace ZAK {

namespace {

std::vector<std::string> split(std::string_view path) {
  std::vector<std::string> segments;
  for (;;) {
    const std::size_t slash = path.find('/');
    segments.emplace_back(path.substr(0, slash));
    if (slash == std::string_view::npos) return segments;
    path.remove_prefix(slash + 1);
  }
}

}  // namespace

PathTemplate::PathTemplate(std::string_view text) : text_(text), segments_(split(text)) {}

std::optional<PathVariables> PathTemplate::match(std::string_view path) const {
  std::vector<std::string> segments = split(path);
  if (segments_.back().ends_with("...}") && segments.size() > segments_.size()) {
    for (std::size_t i = segments_.size(); i < segments.size(); ++i)
      segments[segments_.size() - 1] += '/' + segments[i];
    segments.resize(segments_.size());
  }
  if (segments.size() != segments_.size()) return std::nullopt;
  PathVariables variables;
  for (std::size_t i = 0; i < segments.size(); ++i) {
    const std::string& expected = segments_[i];
    if (expected.starts_with('{')) {
      if (segments[i].empty()) return std::nullopt;
      variables[expected.substr(1, expected.find_first_of(".}") - 1)] = EmulatorText::percentDecoded(segments[i]);
    } else if (expected != segments[i]) {
      return std::nullopt;
    }
  }
  return variables;
}

void Router::add(std::string method, std::string_view path, Handler handler) {
  routes_.push_back(Route{std::move(method), PathTemplate(path), handler});
}

Router::Match Router::match(std::string_view method, std::string_view path) const {
  Match best;
  for (const Route& route : routes_) {
    auto variables = route.path.match(path);
    if (!variables) continue;
    best.pathKnown = true;
    if (route.method != method || (best.route && best.variables.size() <= variables->size())) continue;
    best.route = &route;
    best.variables = std::move(*variables);
  }
  return best;
}

}  // namespace ZAK
