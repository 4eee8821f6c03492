#pragma once

#include <map>
#include <string>

namespace ZAK {

/// What a user chose in the app's settings.
struct Preferences {
  /// Whether each push notification is wanted.
  std::map<std::string, bool> push{
      {"late", true}, {"comment", true}, {"mention", true}, {"friendRequest", true}, {"quiblet", true}};
  /// The status of each term by its code. Nobody has an account without the first two.
  std::map<std::string, std::string> terms{{"terms", "ACCEPTED"},
                                           {"privacy", "ACCEPTED"},
                                           {"memories", "UNKNOWN"},
                                           {"gps", "UNKNOWN"},
                                           {"camera", "UNKNOWN"},
                                           {"contacts", "UNKNOWN"},
                                           {"show-friends-to-friends", "UNKNOWN"}};
};

}  // namespace ZAK
