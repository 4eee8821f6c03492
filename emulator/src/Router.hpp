#pragma once

#include <zvapikit/emulator/EmulatorRequest.hpp>

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ZAK {

struct Call;

using PathVariables = std::map<std::string, std::string>;

/// A path template such as `/content/posts/{postId}`. A variable stands for one segment that is not empty; `{path...}`
/// at the end, for one or more.
class PathTemplate {
 public:
  explicit PathTemplate(std::string_view text);

  /// The variables, percent-decoded; absent when the path does not fit.
  [[nodiscard]] std::optional<PathVariables> match(std::string_view path) const;
  [[nodiscard]] const std::string& text() const noexcept { return text_; }

 private:
  std::string text_;
  std::vector<std::string> segments_;
};

/// The operations of one server.
class Router {
 public:
  using Handler = EmulatorResponse (*)(Call&);

  struct Route {
    std::string method;
    PathTemplate path;
    Handler handler;
  };
  struct Match {
    const Route* route = nullptr;  ///< null when none fits
    PathVariables variables;
    bool pathKnown = false;  ///< some route fits the path, whatever the method
  };

  void add(std::string method, std::string_view path, Handler handler);
  /// Of the routes that fit, the one with the fewest variables: `/posts/upload-url` goes before `/posts/{id}`.
  [[nodiscard]] Match match(std::string_view method, std::string_view path) const;

 private:
  std::vector<Route> routes_;
};

}  // namespace ZAK
