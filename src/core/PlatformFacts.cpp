#include "core/HeadersFactory.hpp"

#include <zvapikit/platform/Locale.hpp>
#include <zvapikit/platform/OperatingSystemVersion.hpp>
#include <zvapikit/platform/TimeZone.hpp>

namespace ZAK {

PlatformFacts PlatformFacts::current() {
  const Locale locale = Locale::current();
  return PlatformFacts{locale.languageCode().value_or(std::string()), locale.preferredLanguages(), timeZoneIdentifier(),
                       OperatingSystemVersion::current().description()};
}

}  // namespace ZAK
