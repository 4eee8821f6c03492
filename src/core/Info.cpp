#include <zvapikit/core/Info.hpp>

namespace ZAK {

std::string_view Info::version() noexcept { return ZVAPIKIT_VERSION; }

}  // namespace ZAK
