#include <zvapikit/core/EmptyDto.hpp>

namespace ZAK::detail {

constinit const JSONType JSONTypeOf<EmptyDto>::value = recordType<EmptyDto>();

}  // namespace ZAK::detail
