#include <zvapikit/http/HTTPMethod.hpp>

#include <cstddef>

namespace ZAK {

std::string_view rawValue(HTTPMethod method) noexcept {
  constexpr std::string_view names[] = {"GET", "HEAD", "POST", "PUT", "PATCH", "DELETE"};
  return names[static_cast<std::size_t>(method)];
}

bool isIdempotent(HTTPMethod method) noexcept { return method != HTTPMethod::post && method != HTTPMethod::patch; }

}  // namespace ZAK
