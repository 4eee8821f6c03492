#pragma once

#include <zvapikit/Export.hpp>

#include <string>
#include <string_view>

namespace ZAK {

/// How much of a body is shown.
enum class JSONPrinting {
  /// Everything as it stands; the text of a parse error quotes what was last read.
  whole,
  /// The values of keys that carry tokens and the queries of URLs, which may be signed, show as `<redacted>`, and a
  /// parse error quotes nothing.
  redacted
};

/// A body for people: indented, keys sorted, slashes unescaped. A body that is not JSON, or nested deeper than 512,
/// gives the parser's error text, one that is not UTF-8 gives `-`. Callable from any thread.
[[nodiscard]] ZVAPIKIT_API std::string prettyPrinted(std::string_view body,
                                                     JSONPrinting printing = JSONPrinting::whole);

}  // namespace ZAK
