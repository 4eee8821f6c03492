#include "core/Endpoint.hpp"
#include "model/AnalyticsBody.hpp"

#include <zvapikit/domains/AnalyticsDomain.hpp>

namespace ZAK {

using boost::asio::awaitable;

awaitable<void> AnalyticsDomain::send(std::vector<AnalyticsEventDto> events) {
  return fire<void>(weakClient(), Endpoint::post("/analytics/events").body([&] {
    return HTTPBody::data(analyticsBody(events), MIMEType::json);
  }));
}

}  // namespace ZAK
