#include "model/MemoryDay.hpp"

#include <zvapikit/model/MemoriesDto.hpp>
#include <zvapikit/platform/TimeZone.hpp>

namespace ZAK {

MemoryDto MemoryDto::decodeJSON(const JSONValue& json) {
  auto memory = json.fields<MemoryDto>();
  const auto start = startOfDay(memory.memoryDay, timeZoneIdentifier());
  memory.memoryDate = start ? *start : json.now();
  return memory;
}

}  // namespace ZAK
