#pragma once

#include <zvapikit/model/AnalyticsEventDto.hpp>

#include <string>
#include <vector>

namespace ZAK {

/// The body `{"events": [...]}` with the dictionaries of the events in their order.
/// \throws EncodingError when a dictionary has no JSON form.
std::string analyticsBody(const std::vector<AnalyticsEventDto>& events);

}  // namespace ZAK
