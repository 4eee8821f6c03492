#include <zvapikit/platform/BundleInfo.hpp>

#include <algorithm>

namespace ZAK {

BundleInfo BundleInfo::sanitized() const {
  const auto isControl = [](unsigned char c) { return c < 0x20 || c == 0x7f; };
  BundleInfo result = *this;
  for (std::string* value : {&result.executable, &result.shortVersion, &result.identifier, &result.version}) {
    if (value->empty() || std::any_of(value->begin(), value->end(), isControl)) *value = "unknown";
  }
  return result;
}

}  // namespace ZAK
