#include "Call.hpp"

#include <algorithm>

namespace ZAK {

using nlohmann::json;

namespace {

EmulatorResponse takeEvents(Call& call) {
  call.checkQuery({});
  const json events = call.body({"events"}).at("events");
  if (!events.is_array() || !std::all_of(events.begin(), events.end(), [](const json& e) { return e.is_object(); }))
    throw Refusal(400, "events must be an array of objects");
  call.world.analyticsEvents += events.size();
  return emptyResponse();
}

}  // namespace

void addAnalyticsRoutes(Router& router) { router.add("POST", "/analytics/events", &takeEvents); }

}  // namespace ZAK
